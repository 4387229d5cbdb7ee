# 32-bit ARM with hard float against musl, the small C library of a unit.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(MUSL_ARCH arm)
set(MUSL_TARGET arm-linux-musleabihf)
include(${CMAKE_CURRENT_LIST_DIR}/musl.cmake)
