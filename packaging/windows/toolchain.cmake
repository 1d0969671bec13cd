# Builds for Windows with MinGW-w64. Given by whoever calls:
#   QRVRC_TARGET_ARCH      x86_64 or i686
#   QRVRC_TARGET_PREFIXES  folders of Qt and of the other libraries for it, separated by ";"
# Qt's own tools (moc, rcc) are those of the system that builds.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QRVRC_TARGET_ARCH QRVRC_TARGET_PREFIXES)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${QRVRC_TARGET_ARCH})

set(triplet ${QRVRC_TARGET_ARCH}-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

set(CMAKE_PREFIX_PATH ${QRVRC_TARGET_PREFIXES})
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} ${QRVRC_TARGET_PREFIXES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# One file each, that runs where no compiler ever was.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")
if(QRVRC_TARGET_ARCH STREQUAL "i686")
    string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--large-address-aware") # long logs need more than 2 GiB of addresses
    string(APPEND CMAKE_MODULE_LINKER_FLAGS_INIT " -Wl,--enable-stdcall-fixup") # exports carry the size of arguments
endif()

set(QT_HOST_PATH /usr CACHE PATH "Qt of the system that builds")
file(GLOB host_qt /usr/lib/*/cmake/Qt6HostInfo)
list(GET host_qt 0 host_qt)
cmake_path(GET host_qt PARENT_PATH host_qt)
set(QT_HOST_PATH_CMAKE_DIR ${host_qt} CACHE PATH "Its CMake packages")
