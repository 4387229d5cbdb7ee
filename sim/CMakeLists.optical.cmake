# optical-module: the I2C bus of a simulated unit. Static, so that it runs inside any root.
add_executable(optical-module
  ${CMAKE_CURRENT_LIST_DIR}/i2c_listener.cc
  ${CMAKE_CURRENT_LIST_DIR}/optical_module.cc
  ${CMAKE_CURRENT_LIST_DIR}/optical_registers.cc
  ${CMAKE_CURRENT_LIST_DIR}/smbus_emulation.cc)
target_link_libraries(optical-module PRIVATE onu_unit)
