# What every target of ours is compiled with. Dependencies are not: their warnings are not ours to mend.
add_library(mira_options INTERFACE)
target_include_directories(mira_options INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})

if(MSVC)
  target_compile_options(mira_options INTERFACE /W4 /WX /permissive- /utf-8 /Zc:__cplusplus)
else()
  target_compile_options(mira_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Woverloaded-virtual -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # From -O2 on, GCC 12 takes additions of strings for overlapping or endless copies, the rest of a
    # span for one that may be larger than memory, and an empty optional's value for one that is used.
    target_compile_options(mira_options INTERFACE
      -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds
      $<$<CONFIG:Release>:-Wno-stringop-overread> $<$<CONFIG:Release>:-Wno-maybe-uninitialized>)
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # It takes the enumerators of a class for shadows of global ones of the same name, which the
    # interface has.
    target_compile_options(mira_options INTERFACE -Wno-shadow)
  endif()
  if(NOT WIN32)
    # The system's COM interfaces have no virtual destructors.
    target_compile_options(mira_options INTERFACE -Wnon-virtual-dtor)
  endif()
endif()

# What is built is the same wherever the sources lie.
if(NOT MSVC)
  add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
  if(WIN32)
    add_link_options(-Wl,--no-insert-timestamp)
  endif()
endif()

if(WIN32)
  target_compile_definitions(mira_options INTERFACE _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
  if(NOT MSVC)
    # The C++ runtime goes into every module, so that only the system's own DLLs are needed, but where
    # a target has MIRA_SHARED_RUNTIME.
    target_link_options(mira_options INTERFACE
      $<$<NOT:$<BOOL:$<TARGET_PROPERTY:MIRA_SHARED_RUNTIME>>>:-static>)
  endif()
endif()

# The sanitized programs are large, which this linker, where there is one, is made for.
if(NOT WIN32 AND NOT MSVC)
  find_program(MIRA_LLD ld.lld)
  if(MIRA_LLD)
    add_link_options(-fuse-ld=lld)
  endif()
endif()

# For the client, the console and the tests, which take most of the time. A check of every pointer
# before it is followed costs up to 40 % of their compile time and finds mostly what AddressSanitizer
# finds as well; the library and the simulated machine, which handle raw bytes, keep all checks.
add_library(mira_quick INTERFACE)
if(MIRA_SANITIZE)
  target_compile_options(mira_quick INTERFACE
    -fno-sanitize=null,alignment,vptr,object-size,nonnull-attribute,returns-nonnull-attribute)
endif()

# Most of a cold build is reading headers, the one for JSON above all, so that sources that are alike are
# compiled together. Names in nameless namespaces are therefore unique within a room.
option(MIRA_UNITY "Compile several sources at once" ON)
function(mira_compile_together target)
  # What is made for one system brings the system's headers and names with it.
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "_(linux|windows)\\.cpp$")
  set_source_files_properties(${sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${MIRA_UNITY} UNITY_BUILD_BATCH_SIZE 8)
endfunction()

if(MIRA_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS MIRA_CHECKED)
  add_link_options(-fsanitize=address,undefined)
endif()
