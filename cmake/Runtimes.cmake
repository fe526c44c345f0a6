# The product with the shared C++ runtime of mingw: three more DLLs beside it, and in return an
# exception that the library throws can be caught by a 32-bit host. Made of the same objects.
if(NOT WIN32 OR MSVC)
  return()
endif()

# What a host sees of the boundary is tested with each of the runtimes.
function(mira_runtime_host name library)
  add_executable(${name} EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tests/hosts/runtime_host.cpp
    $<TARGET_OBJECTS:mira_sim_objects>)
  target_compile_definitions(${name} PRIVATE MIRA_STATIC)
  target_link_libraries(${name} PRIVATE ${library} mira_support ole32 oleaut32 wbemuuid)
endfunction()
function(mira_runtime_test name what expected)
  add_test(NAME ${name}_${what} COMMAND ${name} ${what})
  set_tests_properties(${name}_${what} PROPERTIES PASS_REGULAR_EXPRESSION ${expected})
endfunction()

set(MIRA_RUNTIME_HOSTS)
if(MIRA_TESTS)
  mira_runtime_host(runtime_host miraintf)
  list(APPEND MIRA_RUNTIME_HOSTS runtime_host)
  mira_runtime_test(runtime_host output "two")
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    mira_runtime_test(runtime_host exception "^caught")
  else()
    # It ends the process.
    add_test(NAME runtime_host_exception COMMAND runtime_host exception)
    set_tests_properties(runtime_host_exception PROPERTIES WILL_FAIL ON)
  endif()
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_library(miraintf_shared SHARED $<TARGET_OBJECTS:mira_objects>)
  target_link_libraries(miraintf_shared PUBLIC mira_options PRIVATE ${MIRA_SYSTEM_LIBRARIES} INTERFACE wbemuuid)
  set_target_properties(miraintf_shared PROPERTIES OUTPUT_NAME miraintf PREFIX "" IMPORT_PREFIX "lib"
    MIRA_SHARED_RUNTIME ON
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/shared ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/shared)
  # The compiler knows where its runtime lies.
  foreach(runtime libstdc++-6.dll libgcc_s_dw2-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND MIRA_RUNTIME_FILES ${file})
  endforeach()
  add_custom_command(TARGET miraintf_shared POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${MIRA_RUNTIME_FILES} $<TARGET_FILE_DIR:miraintf_shared> VERBATIM)
  mira_simulated_library(miraintf_shared_sim shared/sim)
  set_target_properties(miraintf_shared_sim PROPERTIES MIRA_SHARED_RUNTIME ON)
  if(MIRA_TESTS)
    mira_runtime_host(runtime_host_shared miraintf_shared)
    set_target_properties(runtime_host_shared PROPERTIES MIRA_SHARED_RUNTIME ON
      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/shared)
    list(APPEND MIRA_RUNTIME_HOSTS runtime_host_shared)
    mira_runtime_test(runtime_host_shared output "^one")
    mira_runtime_test(runtime_host_shared exception "^caught ComError 0x8007000e")
  endif()
endif()
if(MIRA_RUNTIME_HOSTS)
  add_dependencies(mira_api_tests ${MIRA_RUNTIME_HOSTS})
endif()
