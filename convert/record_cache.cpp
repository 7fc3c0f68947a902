#include "convert/record_cache.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace meshcast {

namespace {

/// Mixes the words of a key: the multiplication carries low bits up, the shift brings high bits
/// down (Knuth, The Art of Computer Programming, volume 3, section 6.4).
std::uint64_t hashOf(const RecordCache::Key& key) {
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = 0;
    for (const std::uint64_t word : key) {
        hash = (hash ^ word) * kGoldenRatio;
        hash ^= hash >> 32U;
    }
    return hash;
}

} // namespace

std::span<unsigned char> ShapeRecords::room() {
    const std::size_t start = used_ + sizeof(Size);
    if (start + GEOM_COPY_BYTES > bytes_.size()) {
        return {};
    }
    return {bytes_.data() + start, GEOM_COPY_BYTES};
}

void ShapeRecords::add(std::size_t size) {
    if (size == 0) {
        isComplete_ = false;
        return;
    }
    const auto counted = static_cast<Size>(size);
    std::memcpy(bytes_.data() + used_, &counted, sizeof counted);
    used_ += sizeof counted + size;
}

std::span<const unsigned char> ShapeRecords::next(std::span<const unsigned char>& bytes) {
    if (bytes.empty()) {
        return {};
    }
    Size size = 0;
    std::memcpy(&size, bytes.data(), sizeof size);
    const auto record = bytes.subspan(sizeof size, size);
    bytes = bytes.subspan(sizeof size + size);
    return record;
}

void RecordCache::Free::operator()(void* memory) const { std::free(memory); }

/// The slot of a key, or the free one where it belongs; null when neither is among the next few.
/// Not more, so that nobody can choose keys that take long to find.
RecordCache::Slot* RecordCache::slotOf(const Key& key, std::uint64_t hash) const {
    constexpr std::size_t kMostSteps = 16;
    for (std::size_t step = 0; step < kMostSteps; ++step) {
        Slot& slot = slots_[(hash + step) % kSlots];
        if (slot.bytes == nullptr || slot.key == key) {
            return &slot;
        }
    }
    return nullptr;
}

RecordCache::Entry RecordCache::find(const Key& key) {
    const std::uint64_t hash = hashOf(key);
    const std::size_t bit = (hash >> 16U) % seen_.size();
    Entry entry;
    entry.hasComeBefore = seen_[bit];
    seen_[bit] = true;
    if (entry.hasComeBefore && slots_ != nullptr) {
        const Slot* const slot = slotOf(key, hash);
        if (slot != nullptr && slot->bytes != nullptr) {
            entry.isKept = true;
            entry.records = {slot->bytes, slot->size};
        }
    }
    return entry;
}

void RecordCache::keep(const Key& key, std::span<const unsigned char> records) {
    if (slots_ == nullptr) {
        // Not by new, whose handler ends the process where memory runs out. The system gives pages
        // only when they are used.
        slots_.reset(static_cast<Slot*>(std::calloc(kSlots, sizeof(Slot))));
        bytes_.reset(static_cast<unsigned char*>(std::malloc(kMostBytes)));
    }
    if (slots_ == nullptr || bytes_ == nullptr || shapes_ == kMostShapes ||
        records.size() > kMostBytes - used_) {
        return;
    }
    Slot* const slot = slotOf(key, hashOf(key));
    if (slot == nullptr || slot->bytes != nullptr) {
        return;
    }
    unsigned char* const place = bytes_.get() + used_;
    std::copy(records.begin(), records.end(), place);
    *slot = {key, place, records.size()};
    used_ += records.size();
    ++shapes_;
}

} // namespace meshcast
