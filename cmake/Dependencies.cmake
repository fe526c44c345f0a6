# The header libraries of the client and the console: mira_deps. A package manager's come first, Debian's
# folders last.
add_library(mira_deps INTERFACE)
set(MIRA_DEPS_INCLUDE ${CMAKE_BINARY_DIR}/deps/include)
file(MAKE_DIRECTORY ${MIRA_DEPS_INCLUDE})
target_include_directories(mira_deps SYSTEM INTERFACE ${MIRA_DEPS_INCLUDE})

function(mira_header_library package target header)
  find_package(${package} CONFIG QUIET)
  if(TARGET ${target})
    target_link_libraries(mira_deps INTERFACE ${target})
    return()
  endif()
  # A cross build must see this folder and nothing else of the system's.
  find_path(${package}_FOLDER ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  get_filename_component(name ${header} DIRECTORY)
  file(CREATE_LINK ${${package}_FOLDER}/${name} ${MIRA_DEPS_INCLUDE}/${name} SYMBOLIC)
endfunction()
mira_header_library(nlohmann_json nlohmann_json::nlohmann_json nlohmann/json.hpp)
if(NOT MIRA_FUZZ)
  mira_header_library(CLI11 CLI11::CLI11 CLI/CLI.hpp)
endif()
