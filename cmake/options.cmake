# How everything is compiled and linked, as two INTERFACE targets: onu_options for every target,
# onu_unit for the two executables that go onto a unit.

add_library(onu_options INTERFACE)
target_include_directories(onu_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(onu_options INTERFACE _GNU_SOURCE _FILE_OFFSET_BITS=64)
target_compile_options(onu_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor -Wundef
  -ffunction-sections -fdata-sections
  -fno-threadsafe-statics)  # getInstance needs no lock: every program here is one thread

if(ONU_SANITIZE)
  target_compile_options(onu_options INTERFACE
    -fsanitize=${ONU_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(onu_options INTERFACE -fsanitize=${ONU_SANITIZE})
else()
  # At a fixed address: a position-independent executable relocates itself at every start, which is
  # most of what a request of ours would cost.
  target_compile_options(onu_options INTERFACE -fno-pie)
  target_link_options(onu_options INTERFACE -no-pie)
endif()
if(ONU_HARDENING)
  target_compile_options(onu_options INTERFACE
    -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()

add_library(onu_unit INTERFACE)
target_link_libraries(onu_unit INTERFACE onu_options)
# Read-only relocations would cost up to a page of flash for nothing: a static executable at a fixed
# address has none, and musl's start-up would not protect them.
target_link_options(onu_unit INTERFACE -Wl,--gc-sections -Wl,-z,norelro)
if(NOT ONU_SANITIZE)
  set(unit_script ${PROJECT_SOURCE_DIR}/cmake/unit.ld)
  target_link_options(onu_unit INTERFACE
    -static -Wl,-T,${unit_script}
    -ffunction-sections -fdata-sections)  # for link-time optimisation
  set_property(TARGET onu_unit PROPERTY INTERFACE_LINK_DEPENDS ${unit_script})
  # An exception that nobody catches just aborts. libstdc++'s handler would first print its type,
  # and the demangler for that is a tenth of a small executable.
  target_link_options(onu_unit INTERFACE
    -Wl,--defsym=_ZN9__gnu_cxx27__verbose_terminate_handlerEv=abort)
endif()

