#pragma once

#include "vrml/nodes.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace meshcast::evaluate {

/// A place on a shape, by its numbers, all from 0. Dropped faces and segments count too.
struct PlaceOnShape {
    std::uint32_t part = 0;   ///< Of lines: the segment. Of faces: the face.
    std::uint32_t face = 0;   ///< Of lines: the line.
    std::uint32_t entry = 0;  ///< The place in coordIndex.
    std::uint32_t corner = 0; ///< The same without the -1 between.
};

/// The indices of a shape, which its materials and normals are spread by.
struct SpreadOver {
    std::span<const std::int32_t> coordIndex;
    std::size_t points = 0;
    std::size_t corners = 0; ///< Entries of coordIndex that are not -1.
};

/// Whether a list of indices is left at its default, or holds what the default is, or nothing.
bool isLeftAtDefault(const QvMFLong& index);

/// Which value of a property each place on a face set or line set gets, by its binding.
class Spread {
public:
    /// What an index list that ends too early leads to: no list has this many values.
    static constexpr std::int32_t kPastEnd = INT32_MAX;

    /// All places get the first value.
    Spread() = default;
    /// `index` is the list beside coordIndex that is meant for the property, `values` the number of
    /// its values. The shape must outlive the spread.
    Spread(Binding::Value binding, const QvMFLong& index, std::size_t values,
           const SpreadOver& shape);

    /// The number of the value, which may be out of range.
    std::int32_t at(const PlaceOnShape& place) const;
    /// Corners of one face may differ.
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
