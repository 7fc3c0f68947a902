#include "geom_stream/object.h"

#include <array>
#include <cstddef>

namespace geom_stream {

std::string_view kindName(Kind kind) {
    constexpr std::array<std::string_view, 5> kNames{"mesh", "polyhedron", "polytriangle", "sphere",
                                                     "label"};
    return kNames.at(static_cast<std::size_t>(kind) - 1);
}

std::vector<std::vector<std::int64_t>> Polyhedron::polygons() const {
    std::vector<std::vector<std::int64_t>> polygons;
    // The decoder has checked that corner counts are positive and fit, and that the last word is 0.
    auto word = polygonList.begin();
    while (word != polygonList.end() && *word != 0) {
        const auto first = word + 1;
        const auto past = first + static_cast<std::ptrdiff_t>(*word);
        polygons.emplace_back(first, past);
        word = past;
    }
    return polygons;
}

} // namespace geom_stream
