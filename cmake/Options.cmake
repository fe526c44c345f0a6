# What every target of ours is compiled with. Dependencies are not: their warnings are not ours to mend.
add_library(mira_options INTERFACE)
target_include_directories(mira_options INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})

if(MSVC)
  target_compile_options(mira_options INTERFACE /W4 /WX /permissive- /utf-8 /Zc:__cplusplus)
else()
  target_compile_options(mira_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Woverloaded-virtual -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # From -O2 on, GCC 12 takes additions of strings for overlapping or endless copies.
    target_compile_options(mira_options INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
  endif()
  if(NOT WIN32)
    # The system's COM interfaces have no virtual destructors.
    target_compile_options(mira_options INTERFACE -Wnon-virtual-dtor)
  endif()
endif()

if(WIN32)
  target_compile_definitions(mira_options INTERFACE _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
  if(NOT MSVC)
    # The C++ runtime goes into every module, so that only the system's own DLLs are needed.
    target_link_options(mira_options INTERFACE -static)
  endif()
endif()

if(MIRA_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=address,undefined)
endif()
