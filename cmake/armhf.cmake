# Builds for 32-bit ARM with Debian's cross compiler and the libraries that
# scripts/armhf-sysroot put into CMPNT_ARMHF_SYSROOT.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMPNT_ARMHF_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot"
    CACHE PATH "Folder with the target's libraries")
# This file is read anew for every compiler check, in a project of its own.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMPNT_ARMHF_SYSROOT)

set(_triplet arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${_triplet}-gcc)
set(CMAKE_CXX_COMPILER ${_triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${_triplet})

# The C library is the cross compiler's own and is found by it; so the folder is
# no sysroot in the compiler's sense, only a place with more libraries.
set(_folders
    "-isystem ${CMPNT_ARMHF_SYSROOT}/usr/include/${_triplet}"
    "-isystem ${CMPNT_ARMHF_SYSROOT}/usr/include")
string(JOIN " " CMAKE_C_FLAGS_INIT ${_folders})
string(JOIN " " CMAKE_CXX_FLAGS_INIT ${_folders})
foreach(_kind EXE SHARED MODULE)
    string(JOIN " " CMAKE_${_kind}_LINKER_FLAGS_INIT
        "-L${CMPNT_ARMHF_SYSROOT}/usr/lib/${_triplet}"
        "-Wl,-rpath-link,${CMPNT_ARMHF_SYSROOT}/usr/lib/${_triplet}")
endforeach()

set(CMAKE_FIND_ROOT_PATH "${CMPNT_ARMHF_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
