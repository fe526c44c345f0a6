# libFuzzer drives each target in-process; its own code is instrumented along with the library's.
file(GLOB MIRA_FUZZERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source ${MIRA_FUZZERS})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE mira_static mira_sim_static)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endforeach()
