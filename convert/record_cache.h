#pragma once

#include "compat/geom/geom.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace meshcast {

/// Records of one shape, one after another in a fixed room.
class ShapeRecords {
public:
    void clear() { used_ = 0, isComplete_ = true; }

    /// Where the next record can be copied to; empty when there is no room for the longest.
    std::span<unsigned char> room();
    /// Takes the first bytes of the room as a record. With a size of 0, the record could not be
    /// copied, and the records are not complete any more.
    void add(std::size_t size);

    bool isComplete() const { return isComplete_; }
    std::span<const unsigned char> bytes() const { return {bytes_.data(), used_}; }

    /// Takes the first record off bytes() as they were; empty when there is none.
    static std::span<const unsigned char> next(std::span<const unsigned char>& bytes);

private:
    using Size = std::uint32_t; ///< In front of each record.
    static constexpr std::size_t kMostRecords = 3;

    std::array<unsigned char, kMostRecords*(sizeof(Size) + GEOM_COPY_BYTES)> bytes_;
    std::size_t used_ = 0;
    bool isComplete_ = true;
};

/// Keeps the records of shapes that come again, so that they need not be converted again: scenes
/// repeat one shape, or primitives of the same measures, hundreds of times.
///
/// Records are kept from a shape's second conversion on, since most shapes come once. The memory is
/// bounded. Where it cannot be had nothing is kept, so that a conversion that works without the
/// cache works with it.
class RecordCache {
public:
    /// What the records of a shape depend on: shapes with equal keys have equal records.
    using Key = std::array<std::uint64_t, 6>;

    /// What is known of a shape that is to be converted.
    struct Entry {
        bool isKept = false;
        bool hasComeBefore = false; ///< Probably: its records are worth keeping.
        std::span<const unsigned char> records;
    };

    Entry find(const Key& key);
    /// Keeps the bytes of a shape's records, unless there is no room.
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

    std::bitset<std::size_t(1) << 20U> seen_;      ///< By hash: a wrong guess costs time only.
    std::unique_ptr<Slot[], Free> slots_;          ///< kSlots, or none yet.
    std::unique_ptr<unsigned char[], Free> bytes_; ///< kMostBytes, or none yet.
    std::size_t shapes_ = 0, used_ = 0;
};

} // namespace meshcast
