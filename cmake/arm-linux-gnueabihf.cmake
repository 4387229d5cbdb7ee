# 32-bit ARM with hard float, Debian's cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
# Before CMake looks for it: what it does not find, it remembers.
find_program(arm_compiler arm-linux-gnueabihf-g++)
if(NOT arm_compiler)
  message(FATAL_ERROR "There is no arm-linux-gnueabihf-g++ yet: "
    "run apt-get install g++-arm-linux-gnueabihf, then this again.")
endif()
set(CMAKE_CXX_COMPILER ${arm_compiler})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
