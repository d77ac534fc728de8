# The program of the other bitness, which the installer brings along: components in DLLs are seen by programs of their own
# bitness only, and the doctor of either side is wanted on one machine. It comes from the build tree of the other preset
# where this is a preset's, else from a tree of its own.
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(this x64)
  set(other x86)
  set(PARVEX_OTHER_PROGRAM parvex32.exe)
else()
  set(this x86)
  set(other x64)
  set(PARVEX_OTHER_PROGRAM parvex64.exe)
endif()
cmake_path(GET CMAKE_BINARY_DIR FILENAME name)
if(name STREQUAL "windows-${this}")
  cmake_path(GET CMAKE_BINARY_DIR PARENT_PATH trees)
  set(tree ${trees}/windows-${other})
else()
  set(tree ${CMAKE_BINARY_DIR}/windows-${other})
endif()
set(PARVEX_OTHER_BUILD ${tree} CACHE PATH "The build tree of the other bitness")

# Apart from this tree's own programs.
set(PARVEX_OTHER_FILE ${CMAKE_BINARY_DIR}/bin/other/parvex.exe)
add_custom_target(parvex_other_program
  COMMAND ${CMAKE_COMMAND} -DPRESET=windows-${other} -DTREE=${PARVEX_OTHER_BUILD} -DOTHER=${CMAKE_BINARY_DIR}
    -DJOIN=${PARVEX_JOIN_SOURCES} -DSTRICT=${PARVEX_WARNINGS_AS_ERRORS}
    -P ${PROJECT_SOURCE_DIR}/cmake/configure_other_build.cmake
  COMMAND ${CMAKE_COMMAND} --build ${PARVEX_OTHER_BUILD} --target parvex
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/bin/other
  COMMAND ${CMAKE_COMMAND} -E copy_if_different ${PARVEX_OTHER_BUILD}/bin/parvex.exe ${PARVEX_OTHER_FILE}
  BYPRODUCTS ${PARVEX_OTHER_FILE}
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} USES_TERMINAL COMMENT "Building the program of the other bitness" VERBATIM)
