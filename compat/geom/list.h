#pragma once

#include "compat/geom/geom.h"
#include "compat/geom/memory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

// How a GEOMlist grows, adopts an array, and is freed.

namespace geom {

/// Single elements tend to be added repeatedly, so room is made for this many at once.
inline constexpr std::int64_t kHeadroom = 100;

/// The allocation sites of one kind of list: its first block, and its growth.
struct GrowthSites {
    AllocationSite first;
    AllocationSite grow;
};

template <class T, int N>
constexpr std::size_t elementBytes(const GEOMlist<T, N>& /*list*/) {
    return sizeof(T) * N;
}

/// The sum of two counts, neither below 0; one that does not fit becomes the largest count, which
/// the allocator then refuses.
constexpr std::int64_t addCounts(std::int64_t a, std::int64_t b) {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    return a > largest - b ? largest : a + b;
}

/// The product of two counts; 0 when either is below 0, the largest count when it does not fit.
constexpr std::int64_t multiplyCounts(std::int64_t a, std::int64_t b) {
    if (a <= 0 || b <= 0)
        return 0;
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    return a > largest / b ? largest : a * b;
}

/// Makes room for n more elements after the used ones. A list that must grow gets room for
/// max(extension, n) more. Does not change the number of used elements.
template <class T, int N>
void makeRoom(GEOMlist<T, N>& list, std::int64_t n, std::int64_t extension,
              const GrowthSites& sites) {
    const std::int64_t step = std::max(extension, n);
    if (list.capacity == GEOM_LENT) {
        const T* const lent = list.data;
        list.capacity = addCounts(list.used, step);
        list.data = static_cast<T*>(allocate(list.capacity, elementBytes(list), sites.first));
        std::memcpy(list.data, lent, static_cast<std::size_t>(list.used) * elementBytes(list));
    } else if (list.capacity == 0) {
        release(list.data); // the block of an earlier addition of no elements
        list.data = static_cast<T*>(allocate(step, elementBytes(list), sites.first));
        list.capacity = step;
    } else if (n > list.capacity - list.used) {
        list.capacity = addCounts(list.used, step);
        list.data =
            static_cast<T*>(reallocate(list.data, list.capacity, elementBytes(list), sites.grow));
    }
}

/// Appends n elements, for which there must be room.
template <class T, int N>
void putElements(GEOMlist<T, N>& list, const T* source, std::int64_t n) {
    /// memcpy must not see the null pointer of an empty array, not even for 0 bytes
    if (n > 0)
        std::memcpy(list.data + list.used * N, source,
                    static_cast<std::size_t>(n) * elementBytes(list));
    list.used += n;
}

/// Makes the caller's block the storage of a list, instead of that which it has.
template <class T, int N>
void adopt(GEOMlist<T, N>& list, const T* source, std::int64_t n) {
    if (list.capacity != GEOM_LENT)
        release(list.data);
    list.data = const_cast<T*>(source); // handed over: the library owns the block now
    list.used = n;
    list.capacity = n;
}

/// Frees an array that was passed with GEOM_TAKE but is not used.
inline void drop(const void* array, int flag) {
    if (flag != GEOM_COPY)
        release(array);
}

/// Reports why an array is refused, and drops it.
inline void refuse(const char* message, const void* array, int flag) {
    GEOMerror("%s", message);
    drop(array, flag);
}

/// Appends n elements. A null source only makes room.
template <class T, int N>
void append(GEOMlist<T, N>& list, const T* source, std::int64_t n, std::int64_t extension, int flag,
            const GrowthSites& sites) {
    n = std::max<std::int64_t>(n, 0);
    if (list.capacity == 0 && flag != GEOM_COPY && source != nullptr) {
        adopt(list, source, n);
        return;
    }
    makeRoom(list, n, extension, sites);
    if (source == nullptr)
        return;
    putElements(list, source, n);
    drop(source, flag);
}

/// Frees the storage and leaves the empty list.
template <class T, int N>
void clear(GEOMlist<T, N>& list) {
    /// Even a list of capacity 0 may own a block.
    if (list.capacity != GEOM_LENT)
        release(list.data);
    list = {};
}

} // namespace geom
