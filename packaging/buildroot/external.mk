include $(BR2_EXTERNAL_ONU_PATH)/onu.mk
