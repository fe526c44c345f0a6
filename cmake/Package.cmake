# The SDK. Each Windows preset installs the folder of its architecture; tools/package.sh puts them together.
if(NOT WIN32 OR MSVC)
  return()
endif()

# What the properties of a file show.
function(mira_version_resource target name type description)
  set(resource ${CMAKE_BINARY_DIR}/version/${target}.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()

set(MIRA_SDK_TARGETS mira miraintf mira_sim mira_support)
mira_version_resource(mira mira.exe VFT_APP "Reads and changes a machine's firmware settings")
mira_version_resource(miraintf miraintf.dll VFT_DLL "Firmware settings for C++ programs")
foreach(row "miraintf_shared|miraintf.dll|Firmware settings for C++ programs (shared runtime)"
    "miraintf_sim|miraintf.dll|Firmware settings on a simulated machine for C++ programs"
    "miraintf_shared_sim|miraintf.dll|Firmware settings on a simulated machine for C++ programs (shared runtime)"
    "miraclient|miraclient.dll|Firmware settings for programs in any language"
    "miraclient_sim|miraclient.dll|Firmware settings on a simulated machine")
  string(REPLACE "|" ";" row "${row}")
  list(GET row 0 target)
  if(TARGET ${target})
    list(GET row 1 name)
    list(GET row 2 description)
    mira_version_resource(${target} ${name} VFT_DLL "${description}")
    list(APPEND MIRA_SDK_TARGETS ${target})
  endif()
endforeach()
# The manual page is written by the program itself.
set(MIRA_MANUAL ${CMAKE_BINARY_DIR}/mira.1)
add_custom_command(OUTPUT ${MIRA_MANUAL} COMMAND mira completion man > ${MIRA_MANUAL} VERBATIM)
add_custom_target(mira_manual DEPENDS ${MIRA_MANUAL})
# Everything that is installed, and nothing else.
add_custom_target(sdk DEPENDS ${MIRA_SDK_TARGETS} mira_manual)

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(MIRA_SDK_FOLDER x64)
else()
  set(MIRA_SDK_FOLDER x86)
endif()
install(TARGETS mira RUNTIME DESTINATION ${MIRA_SDK_FOLDER}/bin)
install(TARGETS miraintf RUNTIME DESTINATION ${MIRA_SDK_FOLDER}/bin ARCHIVE DESTINATION ${MIRA_SDK_FOLDER}/lib)
install(TARGETS mira_sim mira_support ARCHIVE DESTINATION ${MIRA_SDK_FOLDER}/lib)
# Of the simulator's builds hosts link nothing.
install(TARGETS miraintf_sim RUNTIME DESTINATION ${MIRA_SDK_FOLDER}/sim)
if(TARGET miraclient)
  install(TARGETS miraclient RUNTIME DESTINATION ${MIRA_SDK_FOLDER}/bin ARCHIVE DESTINATION ${MIRA_SDK_FOLDER}/lib)
  install(TARGETS miraclient_sim RUNTIME DESTINATION ${MIRA_SDK_FOLDER}/sim)
endif()
if(TARGET miraintf_shared)
  install(TARGETS miraintf_shared RUNTIME DESTINATION x86-shared/bin ARCHIVE DESTINATION x86-shared/lib)
  install(TARGETS miraintf_shared_sim RUNTIME DESTINATION x86-shared/sim)
  install(FILES ${MIRA_RUNTIME_FILES} DESTINATION x86-shared/bin)
  install(TARGETS mira_sim mira_support ARCHIVE DESTINATION x86-shared/lib)
endif()

# The same for every architecture.
file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/public_headers.txt MIRA_PUBLIC_HEADERS REGEX "^[^#]")
foreach(header ${MIRA_PUBLIC_HEADERS})
  get_filename_component(room ${header} DIRECTORY)
  install(FILES ${CMAKE_SOURCE_DIR}/src/${header} DESTINATION include/${room})
endforeach()
file(GLOB MIRA_SIM_PUBLIC RELATIVE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/sim/*.h ${CMAKE_SOURCE_DIR}/sim/firmware/*.h)
# What tests of unmodified hosts include lies beside mira_client.h.
list(FILTER MIRA_SIM_PUBLIC EXCLUDE REGEX "/mira_sim")
install(FILES ${CMAKE_SOURCE_DIR}/sim/mira_sim.h ${CMAKE_SOURCE_DIR}/sim/mira_sim_gtest.h DESTINATION include)
foreach(header ${MIRA_SIM_PUBLIC})
  get_filename_component(room ${header} DIRECTORY)
  install(FILES ${CMAKE_SOURCE_DIR}/${header} DESTINATION include/${room})
endforeach()
install(DIRECTORY ${CMAKE_SOURCE_DIR}/client/c/ DESTINATION include FILES_MATCHING PATTERN "mira_client.h*")
configure_file(${CMAKE_SOURCE_DIR}/sdk/MiraIntfConfigVersion.cmake.in MiraIntfConfigVersion.cmake @ONLY)
install(FILES ${CMAKE_SOURCE_DIR}/sdk/MiraIntfConfig.cmake ${CMAKE_BINARY_DIR}/MiraIntfConfigVersion.cmake
  DESTINATION lib/cmake/MiraIntf)
foreach(folder x86 x86-shared x64)
  configure_file(${CMAKE_SOURCE_DIR}/sdk/miraintf.pc.in pkgconfig/${folder}/miraintf.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/pkgconfig/${folder}/miraintf.pc DESTINATION ${folder}/lib/pkgconfig)
endforeach()
foreach(folder x86 x64)
  configure_file(${CMAKE_SOURCE_DIR}/sdk/miraclient.pc.in pkgconfig/${folder}/miraclient.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/pkgconfig/${folder}/miraclient.pc DESTINATION ${folder}/lib/pkgconfig)
endforeach()
install(FILES ${MIRA_MANUAL} DESTINATION share/man/man1)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/integrations DESTINATION . PATTERN tests EXCLUDE PATTERN "__pycache__" EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples ${CMAKE_SOURCE_DIR}/docs DESTINATION .
  PATTERN Doxyfile EXCLUDE PATTERN speed.md EXCLUDE PATTERN proof.md EXCLUDE PATTERN "__pycache__" EXCLUDE)
install(FILES ${CMAKE_SOURCE_DIR}/sdk/README.md ${CMAKE_SOURCE_DIR}/sdk/LICENSE ${CMAKE_SOURCE_DIR}/CHANGELOG.md
  DESTINATION .)
