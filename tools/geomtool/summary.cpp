#include "tools/geomtool/summary.h"

#include "compat/geom/format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace geomtool {

using geom_stream::Kind;
using geom_stream::Label;
using geom_stream::Mesh;
using geom_stream::Object;
using geom_stream::Polyhedron;
using geom_stream::Polytriangle;
using geom_stream::Sphere;
using geom_stream::Vec3;
using geom_stream::VertexArrays;

namespace {

template <class Container>
std::int64_t sizeOf(const Container& container) {
    return static_cast<std::int64_t>(container.size());
}

struct CountsOf {
    std::vector<Count> operator()(const Mesh& mesh) const {
        return {{"u", mesh.u}, {"v", mesh.v}, {"vertices", sizeOf(mesh.vertices)}};
    }
    std::vector<Count> operator()(const Polyhedron& polyhedron) const {
        return {{"polygons", polyhedron.polygonCount},
                {"indices", polyhedron.indexCount},
                {"vertices", sizeOf(polyhedron.vertices)}};
    }
    std::vector<Count> operator()(const Polytriangle& polytriangle) const {
        std::int64_t vertices = sizeOf(polytriangle.segments.vertices);
        for (const auto* list : {&polytriangle.strips, &polytriangle.polylines})
            for (const VertexArrays& arrays : *list)
                vertices += sizeOf(arrays.vertices);
        return {{"strips", sizeOf(polytriangle.strips)},
                {"polylines", sizeOf(polytriangle.polylines)},
                {"segment-vertices", sizeOf(polytriangle.segments.vertices)},
                {"vertices", vertices}};
    }
    std::vector<Count> operator()(const Sphere& sphere) const {
        return {{"spheres", sizeOf(sphere.vertices)}, {"radii", sizeOf(sphere.radii)}};
    }
    std::vector<Count> operator()(const Label& label) const {
        return {{"labels", sizeOf(label.texts)}};
    }
};

/// Collects the arrays that are not empty.
class GroupBuilder {
public:
    explicit GroupBuilder(ValueGroup group) : group_(std::move(group)) {}

    template <class Element>
    GroupBuilder& add(std::string_view name, const std::vector<Element>& values) {
        if (!values.empty())
            group_.arrays.push_back({name, std::span<const Element>(values)});
        return *this;
    }

    GroupBuilder& addVertices(std::string_view name, const std::vector<Vec3>& vertices) {
        group_.arrays.push_back({name, std::span<const Vec3>(vertices)});
        return *this;
    }

    GroupBuilder& addPolygons(const Polyhedron& polyhedron) {
        const std::int64_t polygons = sizeOf(polyhedron.polygons());
        if (polygons > 0)
            group_.arrays.push_back({"polygons", PolygonsOf{&polyhedron}});
        // The raw words show more than the polygons if there is data after the end of the list.
        return polygons < polyhedron.polygonCount ? add("polygon-list", polyhedron.polygonList)
                                                  : *this;
    }

    GroupBuilder& addAttributes(const VertexArrays& arrays) {
        return add("normals", arrays.normals)
            .add("colours", arrays.colours)
            .add("uvs", arrays.uvs)
            .add("uvws", arrays.uvws)
            .add("vertex-data", arrays.vertexData)
            .add("primitive-data", arrays.primitiveData)
            .add("vertex-trans", arrays.vertexTrans);
    }

    ValueGroup take() { return std::move(group_); }

private:
    ValueGroup group_;
};

struct GroupsOf {
    std::vector<ValueGroup>& groups;

    void operator()(const Mesh& mesh) const {
        groups.push_back(
            GroupBuilder({}).addVertices("vertices", mesh.vertices).addAttributes(mesh).take());
    }
    void operator()(const Polyhedron& polyhedron) const {
        groups.push_back(GroupBuilder({})
                             .addPolygons(polyhedron)
                             .addVertices("vertices", polyhedron.vertices)
                             .addAttributes(polyhedron)
                             .take());
    }
    void operator()(const Polytriangle& polytriangle) const {
        const auto add = [this](ValueGroup group, const VertexArrays& arrays) {
            groups.push_back(GroupBuilder(std::move(group))
                                 .addVertices("vertices", arrays.vertices)
                                 .addAttributes(arrays)
                                 .take());
        };
        for (std::size_t i = 0; i < polytriangle.strips.size(); ++i)
            add({"strip", "strips", i + 1, {}}, polytriangle.strips[i]);
        for (std::size_t i = 0; i < polytriangle.polylines.size(); ++i)
            add({"polyline", "polylines", i + 1, {}}, polytriangle.polylines[i]);
        if (!polytriangle.segments.vertices.empty())
            add({"segments", "", 1, {}}, polytriangle.segments);
    }
    void operator()(const Sphere& sphere) const {
        groups.push_back(GroupBuilder({})
                             .addVertices("centres", sphere.vertices)
                             .add("radii", sphere.radii)
                             .addAttributes(sphere)
                             .take());
    }
    void operator()(const Label& label) const {
        groups.push_back(GroupBuilder({})
                             .add("texts", label.texts)
                             .addVertices("positions", label.positions)
                             .add("offsets", label.offsets)
                             .add("heights", label.heights)
                             .add("colours", label.colours)
                             .add("label-data", label.data)
                             .take());
    }
};

class BoundsOf {
public:
    void operator()(const VertexArrays& arrays) { include(arrays.vertices); }
    void operator()(const Label& label) { include(label.positions); }
    void operator()(const Polytriangle& polytriangle) {
        for (const auto* list : {&polytriangle.strips, &polytriangle.polylines})
            for (const VertexArrays& arrays : *list)
                include(arrays.vertices);
        include(polytriangle.segments.vertices);
    }

    const std::optional<Bounds>& result() const { return bounds_; }

private:
    void include(const std::vector<Vec3>& positions) {
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        if (!positions.empty() && !bounds_)
            bounds_ = Bounds{{kNan, kNan, kNan}, {kNan, kNan, kNan}};
        for (const Vec3& position : positions) {
            for (std::size_t axis = 0; axis < position.size(); ++axis) {
                // Not std::fmin, which may return either of 0 and -0.
                const float value = position[axis];
                float& minimum = bounds_->minimum[axis];
                float& maximum = bounds_->maximum[axis];
                if (std::isnan(minimum) || value < minimum)
                    minimum = value;
                if (std::isnan(maximum) || value > maximum)
                    maximum = value;
            }
        }
    }

    std::optional<Bounds> bounds_;
};

struct BitName {
    std::uint32_t bit;
    std::string_view name;
};

constexpr std::array<BitName, 7> kLabelBits{{{GEOM_LABEL_STROKE, "stroke"},
                                             {GEOM_LABEL_TITLE, "title"},
                                             {GEOM_LABEL_CENTER, "centred"},
                                             {GEOM_LABEL_RIGHT, "right"},
                                             {GEOM_LABEL_LEFT, "left"},
                                             {GEOM_LABEL_DROP_SHADOW, "drop shadow"},
                                             {GEOM_LABEL_EXTRA, "0x100"}}};

constexpr std::array<std::string_view, 9> kFontFamilies{"Courier", "Helvetica", "New Century",
                                                        "Times",   "Charter",   "Symbol",
                                                        "Roman",   "Script",    "Mathematics"};

std::string describeFont(std::uint32_t number) {
    constexpr std::uint32_t kFirstFont = 128;
    constexpr std::uint32_t kStyles = 4;
    constexpr std::uint32_t kBold = 2;
    constexpr std::uint32_t kUpright = 1;

    std::string text = "font " + std::to_string(number);
    if (number < kFirstFont || (number - kFirstFont) / kStyles >= kFontFamilies.size())
        return text + " (unknown)";
    text.append(" ").append(kFontFamilies[(number - kFirstFont) / kStyles]);
    if ((number & kBold) != 0)
        text += " bold";
    if ((number & kUpright) == 0)
        text += " italic";
    return text;
}

void notePolygons(const Polyhedron& polyhedron, std::vector<std::string>& notes) {
    const auto polygons = polyhedron.polygons();
    const std::int64_t vertices = sizeOf(polyhedron.vertices);
    std::int64_t strays = 0;
    for (const auto& polygon : polygons)
        strays += std::ranges::count_if(
            polygon, [vertices](std::int64_t number) { return number < 1 || number > vertices; });

    if (sizeOf(polygons) < polyhedron.polygonCount) {
        notes.push_back("polygon list ends after " + std::to_string(polygons.size()) + " of " +
                        std::to_string(polyhedron.polygonCount) + " polygons");
    }
    if (strays > 0) {
        notes.push_back("vertex numbers outside 1 to " + std::to_string(vertices) + ": " +
                        std::to_string(strays));
    }
}

} // namespace

std::vector<Count> counts(const Object& object) { return std::visit(CountsOf{}, object.body); }

std::vector<std::string_view> namesOfFlags(std::uint32_t flags) {
    std::vector<std::string_view> names;
    for (const geom_stream::FlagName& entry : geom_stream::kFlagNames)
        if ((flags & entry.bit) != 0)
            names.push_back(entry.name);
    return names;
}

std::optional<Bounds> bounds(const Object& object) {
    BoundsOf visitor;
    std::visit(visitor, object.body);
    return visitor.result();
}

std::string describeLabelFlags(std::uint32_t labelFlags) {
    std::string text = describeFont(labelFlags & GEOM_LABEL_FONT_MASK);
    for (const BitName& entry : kLabelBits)
        if ((labelFlags & entry.bit) != 0)
            text.append(", ").append(entry.name);
    return text;
}

std::vector<std::string> notes(const Object& object) {
    std::vector<std::string> notes;
    if (const std::int64_t expected = expectedByteCount(object); object.byteCount != expected)
        notes.push_back("bytecount should be " + std::to_string(expected));
    if (object.kind() == Kind::kPolyhedron)
        notePolygons(object.polyhedron(), notes);
    return notes;
}

std::vector<ValueGroup> valueGroups(const Object& object) {
    std::vector<ValueGroup> groups;
    for (std::size_t i = 0; i < object.properties.size(); ++i) {
        ValueGroup group = GroupBuilder({"property", "properties", i + 1, {}})
                               .add("bytes", object.properties[i].bytes)
                               .take();
        groups.push_back(std::move(group));
    }
    std::visit(GroupsOf{groups}, object.body);
    return groups;
}

} // namespace geomtool
