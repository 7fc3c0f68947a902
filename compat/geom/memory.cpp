#include "compat/geom/memory.h"

#include "compat/geom/geom.h"

#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace geom {
namespace {

// Even an array without elements owns a block, so that a null pointer always means "not given".
constexpr std::int64_t kEmptyBlock = 8;

// Small blocks are cleared here: std::calloc passes by the C library's store of freed small blocks,
// which makes it, and the freeing, several times as slow. Large ones come cleared from the system.
constexpr std::size_t kSmallBlock = 1024;

// Apart from its caller, or the compiler makes one call of std::calloc of the two.
[[gnu::noinline]] void* clear_block(void* block, std::size_t bytes) {
    return block == nullptr ? nullptr : std::memset(block, 0, bytes);
}

// A size that does not fit is one that no allocator can serve.
constexpr std::int64_t kTooLarge = std::numeric_limits<std::int64_t>::max();

std::int64_t block_bytes(std::int64_t count, std::size_t size) {
    if (count <= 0)
        return kEmptyBlock;
    const auto element = static_cast<std::int64_t>(size);
    return count > kTooLarge / element ? kTooLarge : count * element;
}

[[noreturn]] void give_up(std::int64_t bytes, const void* old, const AllocationSite& site) {
    static_cast<void>(
        std::fprintf(stderr, "%s line %d, %" PRId64 " bytes", site.module, site.line, bytes));
    if (old != nullptr)
        static_cast<void>(
            std::fprintf(stderr, ", old ptr 0x%" PRIx32,
                         static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(old))));
    static_cast<void>(std::fputs("\n", stderr));
    GEOMfatal_error("%s", site.message);
}

// What `obtain` gives for the bytes of `count` elements; does not return without a block.
template <class Obtain>
void* block_for(std::int64_t count, std::size_t size, const void* old, const AllocationSite& site,
                Obtain obtain) {
    const std::int64_t bytes = block_bytes(count, size);
    // A 32-bit machine has no block of the sizes that it can count.
    const bool may_fit = bytes < std::numeric_limits<std::ptrdiff_t>::max();
    void* block = may_fit ? obtain(static_cast<std::size_t>(bytes)) : nullptr;
    if (block == nullptr)
        give_up(bytes, old, site);
    return block;
}

} // namespace

void* allocate(std::int64_t count, std::size_t size, const AllocationSite& site) {
    return block_for(count, size, nullptr, site, [](std::size_t n) { return std::malloc(n); });
}

void* allocate_zeroed(std::int64_t count, std::size_t size, const AllocationSite& site) {
    return block_for(count, size, nullptr, site, [](std::size_t n) {
        return n > kSmallBlock ? std::calloc(1, n) : clear_block(std::malloc(n), n);
    });
}

void* reallocate(void* old, std::int64_t count, std::size_t size, const AllocationSite& site) {
    return block_for(count, size, old, site, [old](std::size_t n) { return std::realloc(old, n); });
}

void* try_allocate(std::size_t bytes) { return std::malloc(bytes); }

void release(const void* block) { std::free(const_cast<void*>(block)); }

} // namespace geom
