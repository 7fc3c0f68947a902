#include "compat/geom/memory.h"

#include "compat/geom/geom.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace geom {
namespace {

// Even an array without elements owns a block, so that a null pointer always means "not given".
constexpr std::int64_t kSmallestBlock = 8;

// A size that does not fit is one that no allocator can serve.
constexpr std::int64_t kTooLarge = std::numeric_limits<std::int64_t>::max();

std::int64_t block_bytes(std::int64_t count, std::size_t size) {
    const auto element = static_cast<std::int64_t>(size);
    if (count > kTooLarge / element)
        return kTooLarge;
    return std::max(std::max<std::int64_t>(count, 0) * element, kSmallestBlock);
}

void* checked(void* block, std::int64_t bytes, const AllocationSite& site) {
    if (block == nullptr) {
        static_cast<void>(
            std::fprintf(stderr, "%s line %d, %" PRId64 " bytes\n", site.module, site.line, bytes));
        GEOMfatal_error("%s", site.message);
    }
    return block;
}

} // namespace

void* allocate(std::int64_t count, std::size_t size, const AllocationSite& site) {
    const std::int64_t bytes = block_bytes(count, size);
    return checked(bytes == kTooLarge ? nullptr : std::malloc(static_cast<std::size_t>(bytes)),
                   bytes, site);
}

void* allocate_zeroed(std::int64_t count, std::size_t size, const AllocationSite& site) {
    const std::int64_t bytes = block_bytes(count, size);
    return checked(bytes == kTooLarge ? nullptr : std::calloc(1, static_cast<std::size_t>(bytes)),
                   bytes, site);
}

void* reallocate(void* old, std::int64_t count, std::size_t size, const AllocationSite& site) {
    const std::int64_t bytes = block_bytes(count, size);
    void* block = bytes == kTooLarge ? nullptr : std::realloc(old, static_cast<std::size_t>(bytes));
    if (block == nullptr) {
        const auto address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(old));
        static_cast<void>(std::fprintf(stderr,
                                       "%s line %d, %" PRId64 " bytes, old ptr 0x%" PRIx32 "\n",
                                       site.module, site.line, bytes, address));
        GEOMfatal_error("%s", site.message);
    }
    return block;
}

void* try_allocate(std::size_t bytes) {
    return std::malloc(bytes);
}

void release(const void* block) {
    std::free(const_cast<void*>(block));
}

} // namespace geom
