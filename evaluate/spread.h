#pragma once

#include "vrml/nodes.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace meshcast::evaluate {

/// The position of a corner in a shape. All numbers start at 0 and include dropped faces and
/// segments.
struct PlaceOnShape {
    std::uint32_t part = 0;   ///< Of lines: the segment. Of faces: the face.
    std::uint32_t face = 0;   ///< Of lines: the line.
    std::uint32_t entry = 0;  ///< The position in coordIndex.
    std::uint32_t corner = 0; ///< The same, not counting the -1 entries.
};

/// The indices of a shape, which decide how materials and normals are assigned.
struct SpreadOver {
    std::span<const std::int32_t> coordIndex;
    std::size_t points = 0;
    std::size_t corners = 0; ///< Entries of coordIndex that are not -1.
};

/// Whether a list of indices is not given, or equals the default, or is empty.
bool isLeftAtDefault(const QvMFLong& index);

/// Assigns the values of a property to the corners of a face set or line set, according to its
/// binding.
class Spread {
public:
    /// The result when the index list is too short. It is out of range for any list.
    static constexpr std::int32_t kPastEnd = INT32_MAX;

    /// All corners get the first value.
    Spread() = default;
    /// `index` is the index list of the property, such as materialIndex; `values` is the number of
    /// its values. The shape must outlive the object.
    Spread(Binding::Value binding, const QvMFLong& index, std::size_t values,
           const SpreadOver& shape);

    /// The index of the value, which may be out of range.
    std::int32_t at(const PlaceOnShape& place) const;
    /// Whether corners of one face may have different values.
    bool isByCorner() const { return mode_ == Mode::kCorner || mode_ == Mode::kEntry; }

private:
    enum class Mode : std::uint8_t {
        kFirst,
        kPart,
        kPartIndexed,
        kFace,
        kFaceIndexed,
        kCorner,
        kEntry
    };

    std::int32_t indexAt(std::uint32_t place) const {
        return place < index_.size() ? index_[place] : kPastEnd;
    }

    Mode mode_ = Mode::kFirst;
    std::span<const std::int32_t> index_;
};

} // namespace meshcast::evaluate
