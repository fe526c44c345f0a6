file(GLOB_RECURSE MIRA_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
if(WIN32)
  list(FILTER MIRA_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()
file(GLOB_RECURSE MIRA_SIM_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sim/*.cpp)
# Belong to the simulator's builds of the two DLLs.
list(FILTER MIRA_SIM_SOURCES EXCLUDE REGEX "/sim/(client|library)_machine\\.cpp$")
if(WIN32)
  list(FILTER MIRA_SIM_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_SIM_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()

# The built-in machines are files in the program: each as bytes, since literals are limited.
file(GLOB MIRA_PROFILES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sim/profiles/*.json)
set(MIRA_PROFILE_SOURCE ${CMAKE_BINARY_DIR}/generated/embedded_profiles.cpp)
set(profile_arrays "")
set(profile_list "")
foreach(profile ${MIRA_PROFILES})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${profile})
  file(READ ${profile} content HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," content "${content}")
  get_filename_component(name ${profile} NAME_WE)
  string(MAKE_C_IDENTIFIER ${name} name)
  string(APPEND profile_arrays "constexpr unsigned char ${name}[] = {${content}};\n")
  string(APPEND profile_list "    {reinterpret_cast<const char*>(${name}), sizeof(${name})},\n")
endforeach()
file(CONFIGURE OUTPUT ${MIRA_PROFILE_SOURCE} @ONLY CONTENT [[
// Generated from sim/profiles.
#include "sim/embedded_profiles.h"

namespace mira::sim {
namespace {

@profile_arrays@
}  // namespace

std::vector<std::string_view> EmbeddedProfiles() {
  return {
@profile_list@  };
}

}  // namespace mira::sim
]])
list(APPEND MIRA_SIM_SOURCES ${MIRA_PROFILE_SOURCE})

set(MIRA_SYSTEM_LIBRARIES)
if(WIN32)
  set(MIRA_SYSTEM_LIBRARIES ole32 oleaut32 wbemuuid advapi32)
endif()

# The objects are compiled once. On Windows they carry the DLL's exports, which a static link does not mind.
add_library(mira_objects OBJECT ${MIRA_SOURCES})
target_compile_definitions(mira_objects PRIVATE $<IF:$<BOOL:${WIN32}>,MIRA_BUILDING_DLL,MIRA_STATIC>)
target_link_libraries(mira_objects PUBLIC mira_options)
target_precompile_headers(mira_objects PRIVATE
  <algorithm> <array> <cstdint> <functional> <iostream> <list> <map> <memory> <span> <string> <string_view> <vector>)

# The library with its internals open: for unit tests, and on Linux for everything.
add_library(mira_static STATIC $<TARGET_OBJECTS:mira_objects>)
target_compile_definitions(mira_static INTERFACE MIRA_STATIC)
target_link_libraries(mira_static PUBLIC mira_options ${MIRA_SYSTEM_LIBRARIES})

# The product.
if(WIN32)
  add_library(miraintf SHARED $<TARGET_OBJECTS:mira_objects>)
  set_target_properties(miraintf PROPERTIES PREFIX "" IMPORT_PREFIX "lib")
  target_link_libraries(miraintf PUBLIC mira_options PRIVATE ${MIRA_SYSTEM_LIBRARIES})
  # Hosts need the interface identifiers of the COM headers.
  target_link_libraries(miraintf INTERFACE wbemuuid)
  add_library(mira::api ALIAS miraintf)
else()
  add_library(mira::api ALIAS mira_static)
endif()

# What needs neither the library nor a machine.
file(GLOB MIRA_SUPPORT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/support/*.cpp)
if(WIN32)
  list(FILTER MIRA_SUPPORT_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_SUPPORT_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()
add_library(mira_support STATIC ${MIRA_SUPPORT_SOURCES})
target_link_libraries(mira_support PUBLIC mira_options)

# The simulated machine sees of the library what a host sees.
if(WIN32 AND NOT MSVC)
  # Compiled once, with plain declarations, which this linker binds to the DLL as well as to the static
  # library.
  add_library(mira_sim_objects OBJECT ${MIRA_SIM_SOURCES})
  target_compile_definitions(mira_sim_objects PRIVATE MIRA_STATIC)
  target_link_libraries(mira_sim_objects PUBLIC mira_options)
  mira_compile_together(mira_sim_objects)
  set(MIRA_SIM_PARTS $<TARGET_OBJECTS:mira_sim_objects>)
else()
  set(MIRA_SIM_PARTS ${MIRA_SIM_SOURCES})
endif()
add_library(mira_sim STATIC ${MIRA_SIM_PARTS})
mira_compile_together(mira_sim)
target_link_libraries(mira_sim PUBLIC mira::api mira_support)
if(WIN32)
  target_link_libraries(mira_sim PUBLIC ole32 oleaut32 wbemuuid)
  add_library(mira_sim_static STATIC ${MIRA_SIM_PARTS})
  target_link_libraries(mira_sim_static PUBLIC mira_static mira_support ole32 oleaut32 wbemuuid)
else()
  add_library(mira_sim_static ALIAS mira_sim)
endif()

# The simulator's build of the product, as sim/miraintf.dll: the same exports and mira_sim_control, with a
# simulated machine below.
add_library(mira_library_machine OBJECT ${CMAKE_SOURCE_DIR}/sim/library_machine.cpp)
target_compile_definitions(mira_library_machine PRIVATE MIRA_STATIC MIRA_SIM_BUILDING)
target_link_libraries(mira_library_machine PUBLIC mira_options)
function(mira_simulated_library name folder)
  add_library(${name} SHARED $<TARGET_OBJECTS:mira_objects> $<TARGET_OBJECTS:mira_sim_objects>
    $<TARGET_OBJECTS:mira_library_machine> ${MIRA_SUPPORT_SOURCES})
  target_link_libraries(${name} PRIVATE mira_options ${MIRA_SYSTEM_LIBRARIES})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME miraintf PREFIX "" IMPORT_PREFIX "lib"
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/${folder}
    ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder})
endfunction()
if(TARGET mira_sim_objects)
  mira_simulated_library(miraintf_sim sim)
endif()
