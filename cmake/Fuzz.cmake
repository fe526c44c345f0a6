# libFuzzer drives each target in-process; its own code is instrumented along with the library's.
file(GLOB MIRA_FUZZERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source ${MIRA_FUZZERS})
  # The program is named fuzz_NAME, whether its source has the prefix or not.
  get_filename_component(name ${source} NAME_WE)
  string(REGEX REPLACE "^fuzz_" "" name ${name})
  add_executable(fuzz_${name} ${source})
  target_link_libraries(fuzz_${name} PRIVATE mira_c_interface mira_static mira_sim_static)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endforeach()
