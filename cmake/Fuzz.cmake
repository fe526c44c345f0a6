# The fuzz targets. With clang, libFuzzer drives each of them in-process; its own code is instrumented
# along with the library's. Any other compiler makes programs that replay the kept inputs.
file(GLOB MIRA_FUZZERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source ${MIRA_FUZZERS})
  # The program is named after its source, whether that has the prefix or not.
  get_filename_component(name ${source} NAME_WE)
  string(REGEX REPLACE "^fuzz_" "" name ${name})
  if(MIRA_FUZZ)
    add_executable(fuzz_${name} ${source})
    target_link_libraries(fuzz_${name} PRIVATE mira_c_interface mira_static mira_sim_static)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    add_executable(replay_${name} ${source} fuzz/support/replay.cpp fuzz/support/memory.cpp)
    target_link_libraries(replay_${name} PRIVATE mira_c_interface mira_static mira_sim_static mira_deps mira_quick)
    list(APPEND MIRA_REPLAYS replay_${name})
    add_test(NAME replay_${name} COMMAND replay_${name} ${CMAKE_SOURCE_DIR}/fuzz/corpus/fuzz_${name})
  endif()
endforeach()

# Writes the inputs that the simulated machine gives.
if(NOT MIRA_FUZZ)
  add_custom_target(replay_all DEPENDS ${MIRA_REPLAYS})
  add_executable(make_corpus EXCLUDE_FROM_ALL fuzz/support/make_corpus.cpp)
  target_link_libraries(make_corpus PRIVATE mira_c_interface mira_static mira_sim_static mira_deps mira_quick)
endif()
