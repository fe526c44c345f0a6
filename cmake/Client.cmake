# What programs do with a machine, for every face: the console, the C interface, fuzz targets.

# Compiled once, with plain declarations, which a mingw linker binds to the DLL as well as to the
# static library.
# The subjects first, then what works on whole machines: a new source moves few others to another
# place among those that are compiled together.
file(GLOB MIRA_CLIENT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/client/*.cpp)
file(GLOB MIRA_WHOLE_MACHINE_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/client/snapshot/*.cpp ${CMAKE_SOURCE_DIR}/client/state/*.cpp
  ${CMAKE_SOURCE_DIR}/client/report/*.cpp)
list(APPEND MIRA_CLIENT_SOURCES ${MIRA_WHOLE_MACHINE_SOURCES})
include(ReportPage)
list(APPEND MIRA_CLIENT_SOURCES ${MIRA_PAGE_SOURCE})
add_library(mira_client_objects OBJECT ${MIRA_CLIENT_SOURCES})
target_compile_definitions(mira_client_objects PRIVATE
  MIRA_VERSION="${PROJECT_VERSION}" $<$<NOT:$<BOOL:${MSVC}>>:MIRA_STATIC>)
target_link_libraries(mira_client_objects PUBLIC mira_options mira_deps PRIVATE mira_quick)
mira_compile_together(mira_client_objects)

add_library(mira_client STATIC $<TARGET_OBJECTS:mira_client_objects>)
target_link_libraries(mira_client PUBLIC mira::api mira_deps)
if(WIN32)
  add_library(mira_client_static STATIC $<TARGET_OBJECTS:mira_client_objects>)
  target_link_libraries(mira_client_static PUBLIC mira_static mira_deps)
else()
  add_library(mira_client_static ALIAS mira_client)
endif()
