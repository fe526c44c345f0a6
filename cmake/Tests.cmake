# GoogleTest comes as Debian's source package and is built for each target.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

file(GLOB MIRA_TEST_SUPPORT CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
file(GLOB MIRA_UNIT_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/unit/*.cpp)
file(GLOB MIRA_API_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/api/*.cpp)

# Internals, linked statically.
add_executable(mira_unit_tests ${MIRA_UNIT_TESTS} ${MIRA_TEST_SUPPORT})
target_link_libraries(mira_unit_tests PRIVATE mira_sim_static mira_static mira_deps gmock gtest_main)

# What hosts and the console see; on Windows against the DLL.
add_executable(mira_api_tests ${MIRA_API_TESTS} ${MIRA_TEST_SUPPORT})
target_link_libraries(mira_api_tests PRIVATE mira_console gmock gtest_main)
target_compile_definitions(mira_api_tests PRIVATE
  MIRA_EXPORTS_FILE="${CMAKE_SOURCE_DIR}/tests/api/exports.txt" MIRA_PROGRAM="$<TARGET_FILE:mira>")
add_dependencies(mira_api_tests mira)

foreach(test mira_unit_tests mira_api_tests)
  target_precompile_headers(${test} PRIVATE <gtest/gtest.h>)
  add_test(NAME ${test}
    COMMAND ${test} --gtest_output=json:results/${test}.json
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
endforeach()
add_test(NAME example_host COMMAND example_host)
add_test(NAME tour COMMAND mira --sim tour)
set_tests_properties(tour PROPERTIES ENVIRONMENT MIRA_SIM_STATE=)
