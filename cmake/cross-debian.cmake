# Cross build for a Debian architecture, included by the toolchain-<arch>.cmake
# files, which set CDR_CROSS_TRIPLET, CDR_CROSS_PROCESSOR, CDR_CROSS_QEMU and
# CDR_CROSS_LOADER (the target's dynamic loader).
#
# The compilers are Debian's cross toolchain (crossbuild-essential-<arch>),
# which brings its own C library and libstdc++. The other libraries come from
# the architecture's Debian packages unpacked into a sysroot (CDR_CROSS_SYSROOT,
# by default sysroot/ of the build tree; scripts/cross.sh fills it). Test
# programs run under qemu user-mode emulation with that sysroot as the root
# of their library paths.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${CDR_CROSS_PROCESSOR})
set(CMAKE_C_COMPILER ${CDR_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${CDR_CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${CDR_CROSS_TRIPLET})

if(NOT CDR_CROSS_SYSROOT)
  set(CDR_CROSS_SYSROOT ${CMAKE_BINARY_DIR}/sysroot)
endif()
set(CDR_CROSS_SYSROOT ${CDR_CROSS_SYSROOT} CACHE PATH "Unpacked Debian packages of the target architecture")
# try_compile projects configure with this file again: hand them the sysroot.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CDR_CROSS_SYSROOT)

set(CMAKE_FIND_ROOT_PATH ${CDR_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CDR_CROSS_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    "${CDR_CROSS_SYSROOT}/usr/lib/${CDR_CROSS_TRIPLET}/pkgconfig:${CDR_CROSS_SYSROOT}/usr/share/pkgconfig")

# Architecture-specific headers of the libraries (OpenSSL's configuration).
# No C library headers are there: the sysroot leaves them to the toolchain.
set(CMAKE_C_STANDARD_INCLUDE_DIRECTORIES ${CDR_CROSS_SYSROOT}/usr/include/${CDR_CROSS_TRIPLET})
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${CDR_CROSS_SYSROOT}/usr/include/${CDR_CROSS_TRIPLET})

# The sysroot's shared libraries need each other at link time.
foreach(dir lib usr/lib)
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${CDR_CROSS_SYSROOT}/${dir}/${CDR_CROSS_TRIPLET}")
  string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-rpath-link,${CDR_CROSS_SYSROOT}/${dir}/${CDR_CROSS_TRIPLET}")
  string(APPEND CMAKE_MODULE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${CDR_CROSS_SYSROOT}/${dir}/${CDR_CROSS_TRIPLET}")
endforeach()

find_program(CDR_CROSS_QEMU_PROGRAM NAMES ${CDR_CROSS_QEMU}-static ${CDR_CROSS_QEMU} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CDR_CROSS_QEMU_PROGRAM} -L ${CDR_CROSS_SYSROOT})
set(CDR_CROSS_LOADER ${CDR_CROSS_SYSROOT}${CDR_CROSS_LOADER})
