#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/mman.h>

namespace meshcast::io {

/// Asks the system to use large pages for a large block of memory that is about to be filled, which
/// takes one page fault for each 2 MiB instead of 512. Blocks below 1 MiB and systems without such
/// pages are left as they are. Returns the block.
inline void* preferLargePages(void* block, std::size_t size) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t kLarge = std::size_t{1} << 20;
    constexpr std::size_t kPage = 4096;
    if (block != nullptr && size >= kLarge) {
        // Whole pages inside the block. Where pages are larger than this, the call fails.
        const std::size_t before = -reinterpret_cast<std::uintptr_t>(block) % kPage;
        static_cast<void>(madvise(static_cast<char*>(block) + before,
                                  (size - before) / kPage * kPage, MADV_HUGEPAGE));
    }
#endif
    return block;
}

} // namespace meshcast::io
