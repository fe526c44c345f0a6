# The two header libraries of the console. A cross build must see their own folders and nothing else of the system's.
find_path(MIRA_CLI11_DIR CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(MIRA_JSON_DIR nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(MIRA_DEPS_INCLUDE ${CMAKE_BINARY_DIR}/deps/include)
file(MAKE_DIRECTORY ${MIRA_DEPS_INCLUDE})
file(CREATE_LINK ${MIRA_CLI11_DIR}/CLI ${MIRA_DEPS_INCLUDE}/CLI SYMBOLIC)
file(CREATE_LINK ${MIRA_JSON_DIR}/nlohmann ${MIRA_DEPS_INCLUDE}/nlohmann SYMBOLIC)
add_library(mira_deps INTERFACE)
target_include_directories(mira_deps SYSTEM INTERFACE ${MIRA_DEPS_INCLUDE})

# What every face shares.
file(GLOB_RECURSE MIRA_CLIENT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/client/*.cpp)
add_library(mira_client STATIC ${MIRA_CLIENT_SOURCES})
target_link_libraries(mira_client PUBLIC mira::api mira_deps PRIVATE mira_quick)
target_compile_definitions(mira_client PRIVATE MIRA_VERSION="${PROJECT_VERSION}")
mira_compile_together(mira_client)

file(GLOB_RECURSE MIRA_CONSOLE_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/console/*.cpp)
list(FILTER MIRA_CONSOLE_SOURCES EXCLUDE REGEX "/console/main\\.cpp$")
if(WIN32)
  list(FILTER MIRA_CONSOLE_SOURCES EXCLUDE REGEX "_linux\\.cpp$")
else()
  list(FILTER MIRA_CONSOLE_SOURCES EXCLUDE REGEX "_windows\\.cpp$")
endif()

add_library(mira_console STATIC ${MIRA_CONSOLE_SOURCES})
target_compile_definitions(mira_console PUBLIC MIRA_VERSION="${PROJECT_VERSION}")
target_link_libraries(mira_console PUBLIC mira_client mira_sim PRIVATE mira_quick)
mira_compile_together(mira_console)

add_executable(mira console/main.cpp)
target_link_libraries(mira PRIVATE mira_console)

# A host as an application developer would write it.
file(GLOB MIRA_EXAMPLES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/examples/*.cpp)
foreach(source ${MIRA_EXAMPLES})
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE mira::api mira_sim)
endforeach()
