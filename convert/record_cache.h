#pragma once

#include "compat/geom/geom.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace meshcast {

/// The records of one shape, one after another in a buffer of fixed size.
class ShapeRecords {
public:
    void clear() { used_ = 0, isComplete_ = true; }

    /// The space for the next record; empty if it is too small for the longest one.
    std::span<unsigned char> room();
    /// Adds the record that was copied to room(). A size of 0 means that it could not be copied;
    /// the records are then incomplete.
    void add(std::size_t size);

    bool isComplete() const { return isComplete_; }
    std::span<const unsigned char> bytes() const { return {bytes_.data(), used_}; }

    /// Removes the first record from a copy of bytes() and returns it; empty if there is none.
    static std::span<const unsigned char> next(std::span<const unsigned char>& bytes);

private:
    using Size = std::uint32_t; ///< Stored before each record.
    static constexpr std::size_t kMostRecords = 3;

    std::array<unsigned char, kMostRecords*(sizeof(Size) + GEOM_COPY_BYTES)> bytes_;
    std::size_t used_ = 0;
    bool isComplete_ = true;
};

/// Keeps the records of repeated shapes, so that they are not converted again: scenes repeat a
/// shape, or primitives of the same size, hundreds of times.
///
/// Records are kept from the second conversion of a shape, since most shapes occur only once.
/// Memory is limited. If an allocation fails, nothing is kept, but the conversion continues.
class RecordCache {
public:
    /// What the records of a shape depend on: shapes with equal keys have equal records.
    using Key = std::array<std::uint64_t, 6>;

    /// The result of a look-up.
    struct Entry {
        bool isKept = false;
        bool hasComeBefore = false; ///< Probably; may be wrong. Its records should be kept.
        std::span<const unsigned char> records;
    };

    Entry find(const Key& key);
    /// Keeps the bytes of a shape's records, unless the cache is full.
    void keep(const Key& key, std::span<const unsigned char> records);

private:
    struct Free {
        void operator()(void* memory) const;
    };
    struct Slot {
        Key key;
        const unsigned char* bytes; ///< Null: the slot is free.
        std::size_t size;
    };

    static constexpr std::size_t kSlots = std::size_t(1) << 14U;
    static constexpr std::size_t kMostShapes = kSlots / 2;
    static constexpr std::size_t kMostBytes = std::size_t(16) * 1024 * 1024;

    Slot* slotOf(const Key& key, std::uint64_t hash) const;

    std::bitset<std::size_t(1) << 20U> seen_;      ///< By hash. Collisions only cost time.
    std::unique_ptr<Slot[], Free> slots_;          ///< kSlots, or none yet.
    std::unique_ptr<unsigned char[], Free> bytes_; ///< kMostBytes, or none yet.
    std::size_t shapes_ = 0, used_ = 0;
};

} // namespace meshcast
