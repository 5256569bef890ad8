# Builds for another architecture with Debian's cross compiler and the libraries
# that scripts/sysroot put into CMPNT_CROSS_SYSROOT.

set(CMPNT_CROSS_TRIPLET "" CACHE STRING "The target as its compiler names it")
set(CMPNT_CROSS_SYSROOT "" CACHE PATH "Folder with the target's libraries")
# This file is read anew for every compiler check, in a project of its own.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMPNT_CROSS_TRIPLET CMPNT_CROSS_SYSROOT)

set(CMAKE_SYSTEM_NAME Linux)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR "${CMPNT_CROSS_TRIPLET}")

set(CMAKE_C_COMPILER ${CMPNT_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${CMPNT_CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${CMPNT_CROSS_TRIPLET})

# The C library is the cross compiler's own and is found by it; so the folder is
# no sysroot in the compiler's sense, only a place with more libraries.
set(_folders
    "-isystem ${CMPNT_CROSS_SYSROOT}/usr/include/${CMPNT_CROSS_TRIPLET}"
    "-isystem ${CMPNT_CROSS_SYSROOT}/usr/include")
string(JOIN " " CMAKE_C_FLAGS_INIT ${_folders})
string(JOIN " " CMAKE_CXX_FLAGS_INIT ${_folders})
foreach(_kind EXE SHARED MODULE)
    string(JOIN " " CMAKE_${_kind}_LINKER_FLAGS_INIT
        "-L${CMPNT_CROSS_SYSROOT}/usr/lib/${CMPNT_CROSS_TRIPLET}"
        "-Wl,-rpath-link,${CMPNT_CROSS_SYSROOT}/usr/lib/${CMPNT_CROSS_TRIPLET}")
endforeach()

set(CMAKE_FIND_ROOT_PATH "${CMPNT_CROSS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
