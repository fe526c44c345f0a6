file(GLOB_RECURSE MIRA_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
if(WIN32)
  list(FILTER MIRA_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()
file(GLOB_RECURSE MIRA_SIM_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sim/*.cpp)
if(WIN32)
  list(FILTER MIRA_SIM_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_SIM_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()

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

# The simulated machine sees of the library what a host sees.
add_library(mira_sim STATIC ${MIRA_SIM_SOURCES})
target_link_libraries(mira_sim PUBLIC mira::api)
if(WIN32)
  target_link_libraries(mira_sim PUBLIC ole32 oleaut32 wbemuuid)
  add_library(mira_sim_static STATIC ${MIRA_SIM_SOURCES})
  target_link_libraries(mira_sim_static PUBLIC mira_static ole32 oleaut32 wbemuuid)
else()
  add_library(mira_sim_static ALIAS mira_sim)
endif()
