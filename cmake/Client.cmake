# What programs do with a machine, for every face: the console, the C interface, fuzz targets.

# The header libraries. A cross build must see their own folders and nothing else of the system's.
find_path(MIRA_JSON_DIR nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(MIRA_DEPS_INCLUDE ${CMAKE_BINARY_DIR}/deps/include)
file(MAKE_DIRECTORY ${MIRA_DEPS_INCLUDE})
file(CREATE_LINK ${MIRA_JSON_DIR}/nlohmann ${MIRA_DEPS_INCLUDE}/nlohmann SYMBOLIC)
add_library(mira_deps INTERFACE)
target_include_directories(mira_deps SYSTEM INTERFACE ${MIRA_DEPS_INCLUDE})
set(MIRA_CLIENT_HEADERS <nlohmann/json.hpp>)
if(NOT MIRA_FUZZ)
  find_path(MIRA_CLI11_DIR CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(CREATE_LINK ${MIRA_CLI11_DIR}/CLI ${MIRA_DEPS_INCLUDE}/CLI SYMBOLIC)
  list(PREPEND MIRA_CLIENT_HEADERS <CLI/CLI.hpp>)
endif()

# Compiled once, with plain declarations, which a mingw linker binds to the DLL as well as to the
# static library.
file(GLOB MIRA_CLIENT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/client/*.cpp)
add_library(mira_client_objects OBJECT ${MIRA_CLIENT_SOURCES})
target_compile_definitions(mira_client_objects PRIVATE
  MIRA_VERSION="${PROJECT_VERSION}" $<$<NOT:$<BOOL:${MSVC}>>:MIRA_STATIC>)
target_link_libraries(mira_client_objects PUBLIC mira_options mira_deps PRIVATE mira_quick)
# The header libraries take most of the time: they are read once for the client and the console.
target_precompile_headers(mira_client_objects PRIVATE ${MIRA_CLIENT_HEADERS})

add_library(mira_client STATIC $<TARGET_OBJECTS:mira_client_objects>)
target_link_libraries(mira_client PUBLIC mira::api mira_deps)
if(WIN32)
  add_library(mira_client_static STATIC $<TARGET_OBJECTS:mira_client_objects>)
  target_link_libraries(mira_client_static PUBLIC mira_static mira_deps)
else()
  add_library(mira_client_static ALIAS mira_client)
endif()
