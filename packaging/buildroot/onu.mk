################################################################################
#
# onu
#
################################################################################

ONU_VERSION = 1.0
ONU_SITE = $(BR2_EXTERNAL_ONU_PATH)/../..
ONU_SITE_METHOD = local

# The flags and the stripping are Buildroot's.
$(eval $(cmake-package))
