# GoogleTest: a package manager's, or Debian's source package, which is built for each target.
find_package(GTest CONFIG QUIET)
if(TARGET GTest::gtest_main)
  set(MIRA_GTEST GTest::gtest GTest::gtest_main)
else()
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  set(MIRA_GTEST gtest gtest_main)
  if(NOT MSVC)
    target_compile_options(gtest PRIVATE -O0)
  endif()
endif()

file(GLOB MIRA_TEST_SUPPORT CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
file(GLOB MIRA_UNIT_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/unit/*.cpp)
file(GLOB MIRA_API_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/api/*.cpp)

# Internals, linked statically.
add_executable(mira_unit_tests ${MIRA_UNIT_TESTS} ${MIRA_TEST_SUPPORT})
target_link_libraries(mira_unit_tests PRIVATE mira_sim_static mira_static mira_deps mira_quick ${MIRA_GTEST})
target_compile_definitions(mira_unit_tests PRIVATE MIRA_TEST_SOURCES="${CMAKE_SOURCE_DIR}/tests")

# What hosts and the console see; on Windows against the DLL.
add_executable(mira_api_tests ${MIRA_API_TESTS} ${MIRA_TEST_SUPPORT})
target_link_libraries(mira_api_tests PRIVATE mira_console mira_quick ${MIRA_GTEST})
target_compile_definitions(mira_api_tests PRIVATE
  MIRA_EXPORTS_FILE="${CMAKE_SOURCE_DIR}/tests/api/exports.txt" MIRA_PROGRAM="$<TARGET_FILE:mira>"
  MIRA_SOURCES="${CMAKE_SOURCE_DIR}")
add_dependencies(mira_api_tests mira)

# The simulator's build of the C++ classes, on Windows as an unmodified host has it: beside the program.
file(GLOB MIRA_SIM_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/sim/*.cpp)
add_executable(mira_sim_tests ${MIRA_SIM_TESTS})
target_include_directories(mira_sim_tests PRIVATE ${CMAKE_SOURCE_DIR}/sim)
target_link_libraries(mira_sim_tests PRIVATE mira::api mira_quick ${MIRA_GTEST})
if(TARGET miraintf_sim)
  set_target_properties(mira_sim_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/sim)
  add_dependencies(mira_sim_tests miraintf_sim)
else()
  target_sources(mira_sim_tests PRIVATE $<TARGET_OBJECTS:mira_library_machine>)
  target_link_libraries(mira_sim_tests PRIVATE mira_sim)
  target_compile_definitions(mira_sim_tests PRIVATE MIRA_SIM_STATIC)
endif()

# The C interface: linked in, or on Windows the DLL, loaded at run time.
file(GLOB MIRA_C_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/c/*.cpp)
add_executable(mira_c_tests ${MIRA_C_TESTS})
target_link_libraries(mira_c_tests PRIVATE mira_console mira_quick ${MIRA_GTEST})
target_compile_definitions(mira_c_tests PRIVATE MIRA_C_GUIDE="${CMAKE_SOURCE_DIR}/docs/c-interface.md")
if(WIN32)
  # A host may bring the compiler's shared runtime along.
  set(MIRA_SHARED_RUNTIME "")
  foreach(runtime libwinpthread-1.dll libgcc_s_dw2-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
      OUTPUT_VARIABLE place OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(APPEND MIRA_SHARED_RUNTIME "Z:${place}|")
  endforeach()
  target_compile_definitions(mira_c_tests PRIVATE MIRA_CLIENT_STATIC "MIRA_SHARED_RUNTIME=\"${MIRA_SHARED_RUNTIME}\"")
  add_dependencies(mira_c_tests miraclient miraclient_sim)
else()
  target_link_libraries(mira_c_tests PRIVATE mira_c_interface)
endif()

# The suite of an application on simulated machines, as the SDK has it.
set(MIRA_APPLICATION ${CMAKE_SOURCE_DIR}/examples/configuration)
add_executable(configuration_test ${MIRA_APPLICATION}/configuration.cpp ${MIRA_APPLICATION}/configuration_test.cpp)
target_include_directories(configuration_test PRIVATE ${CMAKE_SOURCE_DIR}/client/c ${CMAKE_SOURCE_DIR}/sim)
target_link_libraries(configuration_test PRIVATE mira_options mira_quick ${MIRA_GTEST})
if(TARGET miraintf_sim)
  target_link_libraries(configuration_test PRIVATE miraclient)
  set_target_properties(configuration_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/sim)
  add_dependencies(configuration_test miraclient_sim)
else()
  target_link_libraries(configuration_test PRIVATE mira_c_interface)
  target_compile_definitions(configuration_test PRIVATE MIRA_SIM_STATIC)
endif()

# The examples at the top of the headers that hosts and tests include must compile; they are not run.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/public_headers.txt MIRA_EXAMPLE_HEADERS REGEX "^[^#]")
file(GLOB MIRA_SIM_HEADERS CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/sim/*.h)
list(FILTER MIRA_SIM_HEADERS EXCLUDE REGEX "/mira_sim")
set(MIRA_EXAMPLE_FILES ${MIRA_EXAMPLE_HEADERS})
list(TRANSFORM MIRA_EXAMPLE_FILES PREPEND ${CMAKE_SOURCE_DIR}/src/)
foreach(header ${MIRA_SIM_HEADERS})
  list(APPEND MIRA_EXAMPLE_FILES ${CMAKE_SOURCE_DIR}/${header})
endforeach()
add_custom_command(OUTPUT header_examples.cpp
  COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/tools/header_examples.py header_examples.cpp
    tests/examples/context.h ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR} -- ${MIRA_EXAMPLE_HEADERS} ${MIRA_SIM_HEADERS}
  DEPENDS ${CMAKE_SOURCE_DIR}/tools/header_examples.py ${CMAKE_SOURCE_DIR}/cmake/public_headers.txt ${MIRA_EXAMPLE_FILES}
  VERBATIM)
# The guide's recipes are compiled and run.
set(MIRA_HOST_GUIDE ${CMAKE_SOURCE_DIR}/docs/host-guide.md)
add_custom_command(OUTPUT guide_recipes.cpp
  COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/tools/guide_recipes.py guide_recipes.cpp ${MIRA_HOST_GUIDE}
  DEPENDS ${CMAKE_SOURCE_DIR}/tools/guide_recipes.py ${MIRA_HOST_GUIDE} VERBATIM)
target_sources(mira_api_tests PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/guide_recipes.cpp)

add_library(mira_header_examples OBJECT ${CMAKE_CURRENT_BINARY_DIR}/header_examples.cpp)
target_link_libraries(mira_header_examples PRIVATE mira::api mira_sim mira_quick)
if(NOT MSVC)
  # Examples name results that nothing uses, and names of their own that a host has, too.
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/header_examples.cpp PROPERTIES COMPILE_OPTIONS
    "-Wno-shadow;-Wno-unused-variable;-Wno-unused-parameter;-Wno-unused-but-set-variable;-Wno-unused-result")
endif()
add_dependencies(mira_unit_tests mira_header_examples)

target_precompile_headers(mira_unit_tests PRIVATE <gtest/gtest.h>)
target_precompile_headers(mira_c_tests PRIVATE <gtest/gtest.h> <nlohmann/json.hpp>)
target_precompile_headers(mira_api_tests PRIVATE <gtest/gtest.h> <nlohmann/json.hpp>)

# Whatever the library is built with: their own speed does not matter, the compiler's does.
if(NOT MSVC)
  foreach(target mira_unit_tests mira_api_tests mira_c_tests mira_sim_tests configuration_test mira_header_examples)
    target_compile_options(${target} PRIVATE -O0)
  endforeach()
endif()

# Each runs in a folder of its own, so that several can run at a time; the results of all lie in one.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/results)
function(mira_test_run name target)
  set(folder ${CMAKE_BINARY_DIR}/run/${name})
  file(MAKE_DIRECTORY ${folder})
  add_test(NAME ${name} COMMAND ${target} --gtest_output=json:../../results/${name}.json
    WORKING_DIRECTORY ${folder})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "MIRA_RESULTS=../../results;${ARGN}")
endfunction()
foreach(test mira_unit_tests mira_c_tests mira_sim_tests configuration_test)
  mira_test_run(${test} ${test})
endforeach()
# The longest first, and in two halves.
foreach(half 0 1)
  mira_test_run(mira_api_tests_${half} mira_api_tests GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=${half})
  set_tests_properties(mira_api_tests_${half} PROPERTIES FIXTURES_SETUP documents COST 1000)
endforeach()
# The API tests write the documents of all commands; their schemas are checked here.
add_test(NAME schemas
  COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/tools/check_schemas.py results/documents.jsonl
  WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
set_tests_properties(schemas PROPERTIES FIXTURES_REQUIRED documents)
# The examples of hosts run as they are: on the simulator's build, which reaches a machine once MIRA_SIM names
# one, and where there is a DLL of the product, on that.
function(mira_host_test name machine)
  set(test ${name}_${machine})
  if(WIN32)
    # The DLL that lies beside it makes the difference.
    set(program ${CMAKE_BINARY_DIR}/bin/sim/${name}.exe)
    add_test(NAME ${test} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${program})
  else()
    add_test(NAME ${test} COMMAND ${name})
  endif()
  # The library keeps its structures to the end of the process.
  set_tests_properties(${test} PROPERTIES ENVIRONMENT "MIRA_SIM=${machine};ASAN_OPTIONS=detect_leaks=0" ${ARGN})
endfunction()
foreach(name example_host sta_host)
  mira_host_test(${name} laptop)
  # Without Windows, a host's own COM comes from the machine, too.
  if(WIN32 OR NOT name STREQUAL sta_host)
    mira_host_test(${name} lapdog PASS_REGULAR_EXPRESSION "There is no simulated machine called 'lapdog'")
  endif()
  if(TARGET miraintf_sim)
    add_custom_command(TARGET ${name} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${name}> ${CMAKE_BINARY_DIR}/bin/sim/ VERBATIM)
    add_dependencies(${name} miraintf_sim)
  endif()
endforeach()
if(WIN32)
  # Whatever it says, it is about this PC.
  add_test(NAME example_host_product COMMAND example_host)
  set_tests_properties(example_host_product PROPERTIES ENVIRONMENT MIRA_SIM=lapdog
    PASS_REGULAR_EXPRESSION "Init failed with status|Token 0x" FAIL_REGULAR_EXPRESSION "lapdog")
  add_test(NAME sta_host_product COMMAND sta_host)
  set_tests_properties(sta_host_product PROPERTIES SKIP_RETURN_CODE 77 FAIL_REGULAR_EXPRESSION "lapdog")
endif()
add_test(NAME simulated_host COMMAND simulated_host)
add_test(NAME tour COMMAND mira --sim tour)
set_tests_properties(tour PROPERTIES ENVIRONMENT MIRA_SIM_STATE=)
