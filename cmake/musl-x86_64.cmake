# x86-64 against musl: what a unit's C library costs, measured where programs run natively.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MUSL_ARCH x86_64)
set(MUSL_TARGET x86_64-linux-musl)
include(${CMAKE_CURRENT_LIST_DIR}/musl.cmake)
