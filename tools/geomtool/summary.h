#pragma once

#include "geom_stream/object.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The contents of a listing, before they are formatted as text or JSON. Everything here refers to
/// the object and must not outlive it.
namespace geomtool {

struct Count {
    std::string_view name;
    std::int64_t value;
};

/// The counts of the object, in the order of the stream.
std::vector<Count> counts(const geom_stream::Object& object);

/// The names of the set bits of the `data` word.
std::vector<std::string_view> namesOfFlags(std::uint32_t flags);

struct Bounds {
    geom_stream::Vec3 minimum;
    geom_stream::Vec3 maximum;
};

/// The bounding box of all vertices, centres or label positions; none if there are none. NaN
/// coordinates are ignored; an axis with NaN only is NaN.
std::optional<Bounds> bounds(const geom_stream::Object& object);

/// A description of the label-flags word, for instance "font 142 Times bold italic, left".
std::string describeLabelFlags(std::uint32_t labelFlags);

/// Notes about valid but unusual content: a wrong `bytecount`, a polygon list that ends early,
/// vertex numbers out of range.
std::vector<std::string> notes(const geom_stream::Object& object);

/// Stands for `polygons()` of a polyhedron, so that Values stays a plain view.
struct PolygonsOf {
    const geom_stream::Polyhedron* polyhedron;
};

/// The values of one array, one element for each vertex, polygon, label or other item.
using Values = std::variant<std::span<const geom_stream::Vec3>, std::span<const geom_stream::Vec2>,
                            std::span<const float>, std::span<const std::int32_t>,
                            std::span<const std::int64_t>, std::span<const std::byte>,
                            std::span<const std::string>, PolygonsOf>;

struct NamedValues {
    std::string_view name;
    Values values;
};

/// Arrays that belong together: those of the whole object, of one strip, of one polyline ...
struct ValueGroup {
    std::string_view singular; ///< "strip", "polyline", "segments", "property"; empty: the object
    std::string_view plural;   ///< "strips" ...; empty when there can be only one such group
    std::size_t number = 0;    ///< from 1 among the groups of that name
    std::vector<NamedValues> arrays;
};

/// All arrays of the object that are not empty. The vertices are always included.
std::vector<ValueGroup> valueGroups(const geom_stream::Object& object);

} // namespace geomtool
