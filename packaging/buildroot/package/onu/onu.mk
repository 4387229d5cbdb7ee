################################################################################
#
# onu
#
################################################################################

ONU_VERSION = 1.0
ONU_SITE = $(BR2_EXTERNAL_ONU_PATH)/../..
ONU_SITE_METHOD = local
ONU_OVERRIDE_SRCDIR_RSYNC_EXCLUSIONS = --exclude=/build
ONU_LICENSE = PROPRIETARY
ONU_REDISTRIBUTE = NO

# Optimisation, hardening and stripping are Buildroot's.
$(eval $(cmake-package))
