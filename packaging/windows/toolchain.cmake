# Builds for 64-bit Windows with MinGW-w64. The folders with what is built for the target come from whoever calls:
#   QRVRC_TARGET_PREFIXES  folders of Qt and of the other libraries, separated by ";"
# Qt's own tools (moc, rcc) are those of the system that builds.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QRVRC_TARGET_PREFIXES)
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

set(QT_HOST_PATH /usr CACHE PATH "Qt of the system that builds")
file(GLOB host_qt /usr/lib/*/cmake/Qt6HostInfo)
list(GET host_qt 0 host_qt)
cmake_path(GET host_qt PARENT_PATH host_qt)
set(QT_HOST_PATH_CMAKE_DIR ${host_qt} CACHE PATH "Its CMake packages")
