#include "evaluate/spread.h"

namespace meshcast::evaluate {

bool isLeftAtDefault(const QvMFLong& index) {
    return index.isDefault() || index.num == 0 || (index.num == 1 && index.values[0] == -1);
}

Spread::Spread(Binding::Value binding, const QvMFLong& index, std::size_t values,
               const SpreadOver& shape) {
    const bool isIndexed = !isLeftAtDefault(index);
    if (isIndexed) {
        index_ = {index.values, static_cast<std::size_t>(index.num)};
    }
    switch (binding) {
    case Binding::PER_PART:
        mode_ = Mode::kPart;
        break;
    case Binding::PER_PART_INDEXED:
        mode_ = isIndexed ? Mode::kPartIndexed : Mode::kPart;
        break;
    case Binding::PER_FACE:
        mode_ = Mode::kFace;
        break;
    case Binding::PER_FACE_INDEXED:
        mode_ = isIndexed ? Mode::kFaceIndexed : Mode::kFace;
        break;
    case Binding::PER_VERTEX: {
        // Existing files also use this binding with one value for each point.
        const bool meansPoints =
            values != shape.corners && (values == shape.points || values < shape.corners);
        mode_ = meansPoints ? Mode::kEntry : Mode::kCorner;
        index_ = shape.coordIndex;
        break;
    }
    case Binding::PER_VERTEX_INDEXED:
        mode_ = Mode::kEntry;
        index_ = isIndexed ? index_ : shape.coordIndex;
        break;
    default:
        break;
    }
}

std::int32_t Spread::at(const PlaceOnShape& place) const {
    switch (mode_) {
    case Mode::kPart:
        return static_cast<std::int32_t>(place.part);
    case Mode::kPartIndexed:
        return indexAt(place.part);
    case Mode::kFace:
        return static_cast<std::int32_t>(place.face);
    case Mode::kFaceIndexed:
        return indexAt(place.face);
    case Mode::kCorner:
        return static_cast<std::int32_t>(place.corner);
    case Mode::kEntry:
        return indexAt(place.entry);
    default:
        return 0;
    }
}

} // namespace meshcast::evaluate
