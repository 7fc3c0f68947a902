#include "compat/geom/memory.h"

#include "compat/geom/geom.h"
#include "io/large_block.h"

#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace geom {
namespace {

// Even an array without elements gets a block, so that a null pointer always means "not given".
constexpr std::int64_t kEmptyBlock = 8;

// Small blocks are cleared here, because std::calloc bypasses the C library's cache of freed small
// blocks and is several times as slow. The system clears large blocks itself.
constexpr std::size_t kSmallBlock = 1024;

// Not inlined, or the compiler replaces malloc and memset by calloc.
[[gnu::noinline]] void* clearBlock(void* block, std::size_t bytes) {
    return block == nullptr ? nullptr : std::memset(block, 0, bytes);
}

// Stands for a size that does not fit. No allocation of it can succeed.
constexpr std::int64_t kTooLarge = std::numeric_limits<std::int64_t>::max();

std::int64_t blockBytes(std::int64_t count, std::size_t size) {
    if (count <= 0)
        return kEmptyBlock;
    const auto element = static_cast<std::int64_t>(size);
    return count > kTooLarge / element ? kTooLarge : count * element;
}

[[noreturn]] void giveUp(std::int64_t bytes, const void* old, const AllocationSite& site) {
    static_cast<void>(
        std::fprintf(stderr, "%s line %d, %" PRId64 " bytes", site.module, site.line, bytes));
    if (old != nullptr)
        static_cast<void>(
            std::fprintf(stderr, ", old ptr 0x%" PRIx32,
                         static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(old))));
    static_cast<void>(std::fputs("\n", stderr));
    GEOMfatal_error("%s", site.message);
}

// Calls `obtain` for the bytes of `count` elements. Ends the process if that returns null.
template <class Obtain>
void* blockFor(std::int64_t count, std::size_t size, const void* old, const AllocationSite& site,
               Obtain obtain) {
    const std::int64_t bytes = blockBytes(count, size);
    // On a 32-bit machine the size may not fit std::size_t.
    const bool mayFit = bytes < std::numeric_limits<std::ptrdiff_t>::max();
    void* block = mayFit ? obtain(static_cast<std::size_t>(bytes)) : nullptr;
    if (block == nullptr)
        giveUp(bytes, old, site);
    return meshcast::io::preferLargePages(block, static_cast<std::size_t>(bytes));
}

} // namespace

void* allocate(std::int64_t count, std::size_t size, const AllocationSite& site) {
    return blockFor(count, size, nullptr, site, [](std::size_t n) { return std::malloc(n); });
}

void* allocateZeroed(std::int64_t count, std::size_t size, const AllocationSite& site) {
    return blockFor(count, size, nullptr, site, [](std::size_t n) {
        return n > kSmallBlock ? std::calloc(1, n) : clearBlock(std::malloc(n), n);
    });
}

void* reallocate(void* old, std::int64_t count, std::size_t size, const AllocationSite& site) {
    return blockFor(count, size, old, site, [old](std::size_t n) { return std::realloc(old, n); });
}

void* tryAllocate(std::size_t bytes) { return std::malloc(bytes); }

void release(const void* block) { std::free(const_cast<void*>(block)); }

} // namespace geom
