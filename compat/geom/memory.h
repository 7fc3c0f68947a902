#pragma once

#include <cstddef>
#include <cstdint>

// All memory of the library. Blocks come from std::malloc, because adopted arrays do.

namespace geom {

/// The source line of an allocation and the message if it fails.
struct AllocationSite {
    const char* module;
    int line;
    const char* message;
};

/// A block of exactly `count` * `size` bytes, or of 8 when there are no elements: never null. On
/// failure, or when the size does not fit, prints "<module> line <n>, <bytes> bytes\n" to standard
/// error and ends through GEOMfatal_error(). `count` below 0 counts as 0.
void* allocate(std::int64_t count, std::size_t size, const AllocationSite& site);

/// The same, filled with zero bytes.
void* allocateZeroed(std::int64_t count, std::size_t size, const AllocationSite& site);

/// Grows or moves `old`; the memory line ends in ", old ptr 0x<low 32 bits>".
void* reallocate(void* old, std::int64_t count, std::size_t size, const AllocationSite& site);

/// A block, or null on failure, which is not reported. For the output stream.
void* tryAllocate(std::size_t bytes);

/// Frees a block or null. Takes pointers to const too, since adopted arrays come as such.
void release(const void* block);

} // namespace geom
