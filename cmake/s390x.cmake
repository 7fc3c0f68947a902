# IBM Z: 64 bits, big-endian, and a plain char that is unsigned.
set(processor s390x)
set(compiler_triplet s390x-linux-gnu)
set(library_triplet s390x-linux-gnu)
set(emulator qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
