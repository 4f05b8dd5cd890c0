# quorvex_add_test_suite(<name> SOURCES <files...> [LIBRARIES <targets...>] [NEEDS_MODULE])
#
# One GoogleTest executable per folder of Tests/, registered test by test
# with CTest. Every suite sees the shared fixtures of Tests/Support; a suite
# that drives the built module gets its path as QUORVEX_MODULE_PATH.
include(GoogleTest)
find_package(GTest REQUIRED)

function(quorvex_add_test_suite name)
  cmake_parse_arguments(ARG "NEEDS_MODULE" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main Threads::Threads)
  if(ARG_NEEDS_MODULE)
    target_compile_definitions(${name} PRIVATE QUORVEX_MODULE_PATH="$<TARGET_FILE:Quorvex>")
    add_dependencies(${name} Quorvex)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
