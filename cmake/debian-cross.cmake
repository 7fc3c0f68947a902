# Shared by the toolchain files in this folder, which set `processor`, `compiler_triplet` (the prefix of
# Debian's cross compiler), `library_triplet` (the folder of its libraries) and `emulator` (of QEMU). Uses the
# libraries that scripts/sysroot.sh unpacks.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_CXX_COMPILER ${compiler_triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${library_triplet})
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator};-L;/usr/${compiler_triplet})

set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot/${processor})
set(CMAKE_FIND_ROOT_PATH ${sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
set(ENV{PKG_CONFIG_LIBDIR} ${sysroot}/usr/lib/${library_triplet}/pkgconfig)
