# The toolchain that script/musl-toolchain makes for MUSL_ARCH, whose tools are called MUSL_TARGET-*.
set(CMAKE_SYSTEM_NAME Linux)
if(DEFINED ENV{ONU_MUSL_DIR})
  set(musl_dir $ENV{ONU_MUSL_DIR})
elseif(DEFINED ENV{XDG_CACHE_HOME})
  set(musl_dir $ENV{XDG_CACHE_HOME}/onu-musl)
else()
  set(musl_dir $ENV{HOME}/.cache/onu-musl)
endif()
# Before CMake looks for a compiler: what it does not find, it remembers. "ready" is the script's
# last step.
if(NOT EXISTS ${musl_dir}/${MUSL_ARCH}/ready)
  message(FATAL_ERROR "There is no musl toolchain in ${musl_dir}/${MUSL_ARCH} yet: "
    "run script/musl-toolchain ${MUSL_ARCH}, then this again.")
endif()
set(CMAKE_CXX_COMPILER ${musl_dir}/${MUSL_ARCH}/bin/${MUSL_TARGET}-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
