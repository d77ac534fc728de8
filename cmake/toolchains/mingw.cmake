# What both Windows targets share. PARVEX_TRIPLET is set by the file that includes this one.
set(CMAKE_C_COMPILER ${PARVEX_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${PARVEX_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${PARVEX_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${PARVEX_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Nothing but system DLLs is needed at run time.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# The 32-bit build runs where there is a 32-bit Wine of the same name (scripts/lib/test_windows_x86).
find_program(PARVEX_WINE wine)
if(PARVEX_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/lib/under_wine)
endif()
