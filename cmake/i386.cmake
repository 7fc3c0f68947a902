# 32-bit x86: 32-bit pointers, and a floating-point unit that computes in its own width.
set(processor i386)
set(compiler_triplet i686-linux-gnu)
set(library_triplet i386-linux-gnu)
set(emulator qemu-i386)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
