include $(sort $(wildcard $(BR2_EXTERNAL_ONU_PATH)/package/*/*.mk))
