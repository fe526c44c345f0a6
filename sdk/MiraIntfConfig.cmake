# find_package(MiraIntf CONFIG [COMPONENTS client cpp simulator])
#
#   MiraIntf::client      the C interface, for every compiler and language: miraclient.dll
#   MiraIntf::cpp         the C++ classes: miraintf.dll; C++20, a compiler that fits (see below)
#   MiraIntf::simulator   the simulated machine for C++ hosts: a static library
#
# MiraIntf_SHARED_RUNTIME, set before: 32-bit hosts with mingw's shared runtime (x86-shared).
# MiraIntf_BIN and MiraIntf_SIM: the folders of the DLLs of the product, and of the builds of them that run on
# simulated machines. MiraIntf_CPP_SIM: that of such a build of miraintf.dll, which fits the host's runtime.
get_filename_component(_mira_root "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(_mira_folder x64)
else()
  set(_mira_folder x86)
endif()
set(MiraIntf_BIN "${_mira_root}/${_mira_folder}/bin")
set(MiraIntf_SIM "${_mira_root}/${_mira_folder}/sim")
set(MiraIntf_CPP_SIM "${MiraIntf_SIM}")

if(NOT WIN32)
  set(MiraIntf_FOUND FALSE)
  set(MiraIntf_NOT_FOUND_MESSAGE "The libraries are for Windows; the target system is ${CMAKE_SYSTEM_NAME}.")
  return()
endif()

set(MiraIntf_client_FOUND TRUE)
if(NOT TARGET MiraIntf::client)
  add_library(MiraIntf::client SHARED IMPORTED)
  set_target_properties(MiraIntf::client PROPERTIES
    IMPORTED_LOCATION "${MiraIntf_BIN}/miraclient.dll"
    INTERFACE_INCLUDE_DIRECTORIES "${_mira_root}/include")
  if(MSVC)
    set_property(TARGET MiraIntf::client PROPERTY IMPORTED_IMPLIB "${_mira_root}/${_mira_folder}/lib/miraclient.lib")
  else()
    set_property(TARGET MiraIntf::client PROPERTY IMPORTED_IMPLIB "${_mira_root}/${_mira_folder}/lib/libmiraclient.dll.a")
  endif()
endif()

# The classes hold members of the standard library, so that only the compiler that built the DLL fits.
set(_mira_problem "")
if(NOT CMAKE_CXX_COMPILER_LOADED)
  set(_mira_problem "C++ is not enabled in this project")
elseif(NOT MINGW OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(_mira_problem "the C++ classes need mingw-w64's GCC, and the compiler is ${CMAKE_CXX_COMPILER_ID}; use MiraIntf::client")
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
  set(_mira_problem "the C++ classes need GCC 12 or later, and this is ${CMAKE_CXX_COMPILER_VERSION}")
endif()
if(_mira_problem)
  set(MiraIntf_cpp_FOUND FALSE)
  set(MiraIntf_simulator_FOUND FALSE)
else()
  set(MiraIntf_cpp_FOUND TRUE)
  set(MiraIntf_simulator_FOUND TRUE)
  set(_mira_cpp ${_mira_folder})
  if(MiraIntf_SHARED_RUNTIME)
    set(_mira_cpp x86-shared)
    set(MiraIntf_BIN "${_mira_root}/${_mira_cpp}/bin")
    set(MiraIntf_CPP_SIM "${_mira_root}/${_mira_cpp}/sim")
  endif()
  if(NOT TARGET MiraIntf::cpp)
    add_library(MiraIntf::cpp SHARED IMPORTED)
    set_target_properties(MiraIntf::cpp PROPERTIES
      IMPORTED_LOCATION "${_mira_root}/${_mira_cpp}/bin/miraintf.dll"
      IMPORTED_IMPLIB "${_mira_root}/${_mira_cpp}/lib/libmiraintf.dll.a"
      INTERFACE_INCLUDE_DIRECTORIES "${_mira_root}/include"
      INTERFACE_COMPILE_FEATURES cxx_std_20
      INTERFACE_COMPILE_DEFINITIONS "_WIN32_WINNT=0x0601;WIN32_LEAN_AND_MEAN;NOMINMAX"
      INTERFACE_LINK_LIBRARIES "wbemuuid")
    if(NOT MiraIntf_SHARED_RUNTIME)
      set_property(TARGET MiraIntf::cpp PROPERTY INTERFACE_LINK_OPTIONS "-static")
    endif()
    add_library(MiraIntf::simulator INTERFACE IMPORTED)
    set_target_properties(MiraIntf::simulator PROPERTIES INTERFACE_LINK_LIBRARIES
      "${_mira_root}/${_mira_cpp}/lib/libmira_sim.a;${_mira_root}/${_mira_cpp}/lib/libmira_support.a;MiraIntf::cpp;ole32;oleaut32")
  endif()
endif()

set(MiraIntf_FOUND TRUE)
foreach(_mira_component ${MiraIntf_FIND_COMPONENTS})
  if(NOT MiraIntf_${_mira_component}_FOUND AND MiraIntf_FIND_REQUIRED_${_mira_component})
    set(MiraIntf_FOUND FALSE)
    if(_mira_component MATCHES "^(cpp|simulator)$")
      set(MiraIntf_NOT_FOUND_MESSAGE "${_mira_problem}")
    else()
      set(MiraIntf_NOT_FOUND_MESSAGE "There is no component '${_mira_component}'; there are client, cpp and simulator.")
    endif()
  endif()
endforeach()
