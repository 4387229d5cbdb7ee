# GTest::gtest_main for another processor, from the sources of Debian's package googletest. No such
# target where they are not installed.
set(googletest /usr/src/googletest/googletest)
if(EXISTS ${googletest})
  add_library(onu_gtest STATIC EXCLUDE_FROM_ALL
    ${googletest}/src/gtest-all.cc ${googletest}/src/gtest_main.cc)
  target_include_directories(onu_gtest SYSTEM
    PUBLIC ${googletest}/include PRIVATE ${googletest})
  target_compile_definitions(onu_gtest PUBLIC GTEST_HAS_PTHREAD=0)  # the target has no threads
  set_target_properties(onu_gtest PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
  add_library(GTest::gtest_main ALIAS onu_gtest)
endif()
