################################################################################
#
# onu
#
################################################################################

ONU_VERSION = 1.0.0
ONU_SITE = $(call qstrip,$(BR2_PACKAGE_ONU_SITE))
ONU_LICENSE = not chosen yet
ONU_LICENSE_FILES = LICENSE
ONU_REDISTRIBUTE = NO
ONU_OVERRIDE_SRCDIR_RSYNC_EXCLUSIONS = --exclude=/build

# Optimisation, hardening and stripping are Buildroot's, and so is the choice of the init script.
ONU_CONF_OPTS = -DONU_INSTALL_INIT_SYSV=OFF

ifneq ($(filter %.git,$(ONU_SITE)),)
ONU_SITE_METHOD = git
endif

ifeq ($(BR2_PACKAGE_ONU_GUARD),y)
ONU_CONF_OPTS += -DONU_GUARD=ON
endif

ifeq ($(BR2_ENABLE_LTO),y)
ONU_CONF_OPTS += -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON
endif

define ONU_INSTALL_INIT_SYSV
	$(INSTALL) -D -m 0755 $(@D)/packaging/init.d/S30onu-init \
		$(TARGET_DIR)/etc/init.d/S30onu-init
endef

define ONU_INSTALL_INIT_SYSTEMD
	$(INSTALL) -D -m 0644 $(@D)/packaging/systemd/onu-init.service \
		$(TARGET_DIR)/usr/lib/systemd/system/onu-init.service
endef

# There are passwords in them. In use the main one is at home with the web pages, the others in
# /etc.
ONU_SETTINGS = $(call qstrip,$(BR2_PACKAGE_ONU_SETTINGS))

ifneq ($(ONU_SETTINGS),)
define ONU_INSTALL_SETTINGS
	$(INSTALL) -d $(TARGET_DIR)/var/tevo/xml_default \
		$(TARGET_DIR)/var/tevo/website/www/xml $(TARGET_DIR)/etc/xml_params
	$(INSTALL) -m 0600 $(wildcard $(ONU_SETTINGS)/*.xml) \
		$(TARGET_DIR)/var/tevo/xml_default
	$(INSTALL) -m 0600 $(filter-out %/tevo_xml_cfg_file.xml,$(wildcard $(ONU_SETTINGS)/*.xml)) \
		$(TARGET_DIR)/etc/xml_params
	$(INSTALL) -m 0600 $(ONU_SETTINGS)/tevo_xml_cfg_file.xml \
		$(TARGET_DIR)/var/tevo/website/www/xml
endef
ONU_POST_INSTALL_TARGET_HOOKS += ONU_INSTALL_SETTINGS
endif

# What is missing is said before anything is fetched or copied.
ifeq ($(BR2_PACKAGE_ONU)$(BR_BUILDING),yy)
ifneq ($(ONU_OVERRIDE_SRCDIR),)
ifeq ($(wildcard $(ONU_OVERRIDE_SRCDIR)/init/onu_cgi.cc),)
$(error ONU_OVERRIDE_SRCDIR is $(ONU_OVERRIDE_SRCDIR), where there are no sources of onu)
endif
else ifeq ($(ONU_SITE),)
$(error onu has no sources: set BR2_PACKAGE_ONU_SITE, or ONU_OVERRIDE_SRCDIR in local.mk)
endif
ifneq ($(ONU_SETTINGS),)
ifeq ($(wildcard $(ONU_SETTINGS)/tevo_xml_cfg_file.xml),)
$(error BR2_PACKAGE_ONU_SETTINGS is $(ONU_SETTINGS), where there is no tevo_xml_cfg_file.xml)
endif
endif
endif

$(eval $(cmake-package))
