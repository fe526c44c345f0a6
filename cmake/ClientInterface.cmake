# The C interface. Its functions take and give plain values, so that a host may be built by any
# compiler; the library is inside, with the C++ runtime.
#
#   mira_c_interface  its objects on the simulator's machines, for programs of our own
#   miraclient        the product
#   miraclient_sim    the same on simulated machines, as sim/miraclient.dll
file(GLOB MIRA_C_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/client/c/*.cpp)
list(FILTER MIRA_C_SOURCES EXCLUDE REGEX "/(real_machine|own_streams)\\.cpp$")
if(WIN32)
  list(FILTER MIRA_C_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_C_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()
set(MIRA_C_REAL ${CMAKE_SOURCE_DIR}/client/c/real_machine.cpp)
set(MIRA_C_SIMULATED ${CMAKE_SOURCE_DIR}/sim/client_machine.cpp)
set(MIRA_C_DEFINITIONS MIRA_STATIC MIRA_CLIENT_STATIC MIRA_VERSION="${PROJECT_VERSION}")

function(mira_c_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_compile_definitions(${name} PRIVATE ${MIRA_C_DEFINITIONS})
  target_link_libraries(${name} PUBLIC mira_options mira_deps PRIVATE mira_quick)
endfunction()
mira_c_objects(mira_c_objects ${MIRA_C_SOURCES})
mira_compile_together(mira_c_objects)
mira_c_objects(mira_c_simulated ${MIRA_C_SIMULATED})
target_compile_definitions(mira_c_simulated PRIVATE MIRA_SIM_BUILDING)

add_library(mira_c_interface STATIC EXCLUDE_FROM_ALL
  $<TARGET_OBJECTS:mira_c_objects> $<TARGET_OBJECTS:mira_c_simulated>)
target_link_libraries(mira_c_interface PUBLIC mira_client_static mira_sim_static)
target_compile_definitions(mira_c_interface INTERFACE MIRA_CLIENT_STATIC)

# A shared library needs objects that may lie anywhere, which Windows' do in any case.
if(NOT WIN32 AND NOT CMAKE_POSITION_INDEPENDENT_CODE)
  return()
endif()

if(WIN32 AND NOT MSVC)
  # The library's objects carry the exports of its own DLL, which this one must not have.
  set(MIRA_PLAIN ${CMAKE_BINARY_DIR}/libmira_plain.a)
  add_custom_command(OUTPUT ${MIRA_PLAIN}
    COMMAND ${CMAKE_OBJCOPY} --remove-section=.drectve $<TARGET_FILE:mira_static> ${MIRA_PLAIN}
    DEPENDS mira_static VERBATIM)
  add_custom_target(mira_plain DEPENDS ${MIRA_PLAIN})
else()
  set(MIRA_PLAIN mira_static)
endif()

function(mira_c_library name)
  add_library(${name} SHARED $<TARGET_OBJECTS:mira_c_objects> $<TARGET_OBJECTS:mira_client_objects>
    ${CMAKE_SOURCE_DIR}/client/c/own_streams.cpp)
  target_compile_definitions(${name} PRIVATE ${MIRA_C_DEFINITIONS})
  target_link_libraries(${name} PRIVATE ${ARGN} ${MIRA_PLAIN} mira_options mira_deps ${MIRA_SYSTEM_LIBRARIES})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME miraclient)
  target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR}/client/c)
  if(WIN32)
    target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/client/c/miraclient.def
      ${CMAKE_SOURCE_DIR}/src/platform/own_frames_windows.cpp)
    set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "lib")
    if(TARGET mira_plain)
      add_dependencies(${name} mira_plain)
    endif()
  else()
    target_link_options(${name} PRIVATE -static-libstdc++ -static-libgcc
      LINKER:--version-script=${CMAKE_SOURCE_DIR}/client/c/miraclient.map)
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${CMAKE_SOURCE_DIR}/client/c/miraclient.map)
  endif()
endfunction()

mira_c_library(miraclient mira_support)
target_sources(miraclient PRIVATE ${MIRA_C_REAL})
set_target_properties(miraclient PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(WIN32 AND NOT MSVC)
  add_library(mira_sim_plain STATIC ${MIRA_SIM_PARTS})
  target_link_libraries(mira_sim_plain PRIVATE mira_options)
else()
  add_library(mira_sim_plain INTERFACE)
  target_link_libraries(mira_sim_plain INTERFACE mira_sim_static)
endif()
mira_c_library(miraclient_sim mira_sim_plain mira_support)
target_sources(miraclient_sim PRIVATE $<TARGET_OBJECTS:mira_c_simulated>)
set_target_properties(miraclient_sim PROPERTIES
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/sim
  LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/sim
  ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/sim)
