# Builds for a 32-bit little-endian machine on one of 64 bits, with the libraries that scripts/i386-libraries.sh has
# unpacked. For a gateway copy this: name its processor, its compilers (arm-linux-gnueabi-g++ ...) instead of the flag
# -m32, and its folder of headers and libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(libraries ${CMAKE_CURRENT_LIST_DIR}/../build/i386/root)
cmake_path(NORMAL_PATH libraries)

set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

set(CMAKE_FIND_ROOT_PATH ${libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/usr/lib/i386-linux-gnu/pkgconfig:${libraries}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${libraries})

# What the libraries need themselves: found when they are linked, and when a program that is built here is run here.
set(folders ${libraries}/lib/i386-linux-gnu ${libraries}/usr/lib/i386-linux-gnu)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--disable-new-dtags")
foreach(folder ${folders})
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${folder}")
endforeach()
set(CMAKE_BUILD_RPATH ${folders})
