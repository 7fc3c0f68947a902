#include "driver/heap.h"

#include "io/large_block.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

namespace meshcast {

#ifdef __GLIBC__

namespace {

constexpr off_t kLargeFile = off_t{4} << 20;
constexpr off_t kMostAtOnce = off_t{1} << 30;
/// Larger blocks get pages of their own, which realloc() moves without copying.
constexpr int kLargestInHeap = 128 * 1024;

} // namespace

void prepareHeap(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size < kLargeFile) {
        return;
    }
    mallopt(M_MMAP_THRESHOLD, kLargestInHeap);
    mallopt(M_TRIM_THRESHOLD, static_cast<int>(kMostAtOnce));
    mallopt(M_TOP_PAD, static_cast<int>(std::min(status.st_size, kMostAtOnce)));
    // No such block is free yet, so the heap grows, by the size above.
    void* const block = std::malloc(kLargestInHeap - 1024);
    if (block != nullptr) {
        const std::ptrdiff_t size = static_cast<char*>(sbrk(0)) - static_cast<char*>(block);
        if (size > kLargeFile) {
            io::preferLargePages(block, static_cast<std::size_t>(size));
        }
        std::free(block);
    }
    mallopt(M_TOP_PAD, kLargestInHeap);
}

#else

void prepareHeap(int /*descriptor*/) {}

#endif

} // namespace meshcast
