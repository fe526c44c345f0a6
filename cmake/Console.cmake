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
target_compile_definitions(mira_console PRIVATE $<$<NOT:$<BOOL:${MSVC}>>:MIRA_STATIC>)
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
