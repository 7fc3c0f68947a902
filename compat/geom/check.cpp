// Verification of one object. Every check returns false at its first failure, which ends the
// verification. Values out of range are reported but do not fail, so that all of them are reported.

#include "compat/geom/geom.h"
#include "compat/geom/list.h"
#include "compat/geom/parts.h"
#include "compat/geom/settings.h"

#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

namespace {

// The largest sensible radius and text height.
constexpr double kLargestSize = 1e24;

// Longer than any finding, since findings consist of fixed words and at most three numbers.
constexpr std::size_t kFindingBytes = 2048;

// Reports one finding. Always returns false, for the check that found it to return.
class Findings {
public:
    explicit Findings(GEOMreporter reporter) : reporter_(reporter) {}

    [[gnu::format(printf, 2, 3)]] bool fail(const char* format, ...) const {
        std::array<char, kFindingBytes> text{};
        std::va_list arguments;
        va_start(arguments, format);
        static_cast<void>(std::vsnprintf(text.data(), text.size(), format, arguments));
        va_end(arguments);
        if (reporter_ != nullptr)
            reporter_(text.data());
        else
            geom::report(GEOMmessage::finding, text.data());
        return false;
    }

private:
    GEOMreporter reporter_;
};

// Kept: counts are printed as ints, of larger ones the low 32 bits.
int asInt(std::int64_t count) { return static_cast<int>(count); }

// The values of a list; none if it is missing.
template <int N>
std::span<const float> valuesOf(const GEOMlist<float, N>* list) {
    if (list == nullptr || list->data == nullptr || list->used <= 0)
        return {};
    return {list->data, static_cast<std::size_t>(list->used) * N};
}

bool isNumber(const Findings& findings, const char* name, std::span<const float> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i]))
            return findings.fail("nan encountered in %s array entry: %d", name,
                                 asInt(static_cast<std::int64_t>(i)));
    }
    return true;
}

template <int N>
bool isNumber(const Findings& findings, const char* name, const GEOMlist<float, N>* list) {
    return isNumber(findings, name, valuesOf(list));
}

// Fails for NaN only.
template <int N>
bool isInRange(const Findings& findings, const char* name, const GEOMlist<float, N>* list,
               double least, double most) {
    if (!isNumber(findings, name, list))
        return false;
    for (const double value : valuesOf(list)) {
        if (value < least || value > most)
            findings.fail("%s array entry: %f is out of the range: %f - %f", name, value, least,
                          most);
    }
    return true;
}

// The list must hold `expected` elements. The message calls them `name` and their number `measure`.
template <class T, int N>
bool hasCount(const Findings& findings, const char* name, const GEOMlist<T, N>* list,
              const char* measure, std::int64_t expected) {
    // Without elements the list may be missing. Coloured line sets have no segment colours, for
    // example.
    const bool missing = expected > 0 && (list == nullptr || list->data == nullptr);
    const std::int64_t used = geom::usedOf(list);
    return (!missing && used == expected) ||
           findings.fail("number of %s: %d, does not match the %s: %d", name, asInt(used), measure,
                         asInt(expected));
}

// The list must not be there, since its flag bit is not set.
template <class T, int N>
bool isAbsent(const Findings& findings, const char* words, const GEOMlist<T, N>* list) {
    return list == nullptr || (list->used == 0 && list->data == nullptr) ||
           findings.fail("object has %s but flag is not set", words);
}

bool checkColors(const Findings& findings, std::uint32_t flags, const GEOMvector_list* colors,
                 std::int64_t vertices) {
    if ((flags & GEOM_HAS_COLORS) != 0)
        return hasCount(findings, "colors", colors, "number of verts", vertices);
    return isAbsent(findings, "color information", colors);
}

bool checkUvs(const Findings& findings, std::uint32_t flags, const GEOMscalar_list* uvs,
              std::int64_t vertices) {
    if ((flags & GEOM_HAS_UVS) != 0)
        return hasCount(findings, "uvs", uvs, "number of 2*verts",
                        geom::multiplyCounts(vertices, 2));
    if ((flags & GEOM_HAS_UVWS) != 0)
        return hasCount(findings, "uvws", uvs, "number of 3*verts",
                        geom::multiplyCounts(vertices, 3));
    // Adding an array of no coordinates sets no flag but allocates a block, so compare the count.
    return geom::usedOf(uvs) == 0 || findings.fail("object has uv information but flag is not set");
}

// The checks that every part shares: counts, then values.
bool checkPart(const Findings& findings, std::uint32_t flags, const geom::ConstPart& part,
               std::int64_t vertices, std::int64_t primitives) {
    const std::int64_t used = geom::usedOf(part.vertices);
    if (used != vertices)
        return findings.fail("number of vertices: %d does not match the expected number: %d",
                             asInt(used), asInt(vertices));
    const auto has = [flags](std::uint32_t bit) { return (flags & bit) != 0; };
    return (has(GEOM_HAS_NORMALS)
                ? hasCount(findings, "normals", part.normals, "number of verts", vertices)
                : isAbsent(findings, "normal information", part.normals)) &&
           checkColors(findings, flags, part.colors, vertices) &&
           checkUvs(findings, flags, part.uvs, vertices) &&
           (has(GEOM_HAS_VERTEX_DATA)
                ? hasCount(findings, "vertex data", part.vertex_data, "no. of verts", vertices)
                : isAbsent(findings, "vert data info", part.vertex_data)) &&
           (has(GEOM_HAS_PRIMITIVE_DATA)
                ? hasCount(findings, "prim data", part.primitive_data, "number of prims",
                           primitives)
                : isAbsent(findings, "prim data info", part.primitive_data)) &&
           isNumber(findings, "verts", part.vertices) &&
           isNumber(findings, "normals", part.normals) &&
           isInRange(findings, "colors", part.colors, 0, 1) &&
           isNumber(findings, "uvs", part.uvs) &&
           isInRange(findings, "vertex trans", part.vertex_trans, 0, 1);
}

bool checkExtent(const Findings& findings, const GEOMobj& obj) {
    constexpr int axes = 3;
    if (!isNumber(findings, "extent", std::span(obj.extent)))
        return false;
    for (int axis = 0; axis < axes; ++axis) {
        const double least = obj.extent[axis];
        const double most = obj.extent[axis + axes];
        if (least > most)
            return findings.fail("extent min: %f is greater than max: %f", least, most);
    }
    return true;
}

bool checkMesh(const Findings& findings, const GEOMobj& obj) {
    const GEOMmesh& mesh = obj.mesh;
    if (mesh.u < 0 || mesh.v < 0)
        return findings.fail("mesh object has negative dims");
    return checkPart(findings, obj.flags, geom::partOf(obj), geom::multiplyCounts(mesh.u, mesh.v),
                     geom::cellsOf(mesh));
}

bool checkPolyhedron(const Findings& findings, const GEOMobj& obj) {
    const std::int64_t polygons = obj.polyhedron.polygons.polygons;
    const std::int64_t vertices = obj.polyhedron.vertices.used;
    if (polygons < 0 || vertices < 0)
        return findings.fail("polyhedron object has negative polys: (%" PRId64
                             ") or verts: (%" PRId64 ")",
                             polygons, vertices);
    return checkPart(findings, obj.flags, geom::partOf(obj), vertices, polygons);
}

bool checkPolytriangle(const Findings& findings, const GEOMobj& obj) {
    const GEOMpolytriangle& all = obj.polytriangle;
    if (all.strips < 0)
        return findings.fail("negative number of polytris: %d", asInt(all.strips));
    if (all.lines < 0)
        return findings.fail("negative number of polylines: %d", asInt(all.lines));
    for (std::int64_t i = 0; i < all.strips; ++i) {
        const geom::ConstPart strip = geom::stripOf(all, i);
        const std::int64_t n = geom::usedOf(strip.vertices);
        if (!checkPart(findings, obj.flags, strip, n, n - 2))
            return false;
    }
    for (std::int64_t i = 0; i < all.lines; ++i) {
        const geom::ConstPart line = geom::polylineOf(all, i);
        const std::int64_t n = geom::usedOf(line.vertices);
        if (!checkPart(findings, obj.flags & geom::kLineFlags, line, n, n - 1))
            return false;
    }
    // Kept: the primitive data of segments is not checked. The flag may have been set for strips
    // and polylines only.
    geom::ConstPart segments = geom::segmentsOf(all);
    segments.primitive_data = nullptr;
    constexpr std::uint32_t segmentFlags = geom::kLineFlags & ~GEOM_HAS_PRIMITIVE_DATA;
    return checkPart(findings, obj.flags & segmentFlags, segments, geom::usedOf(segments.vertices),
                     0);
}

bool checkSphere(const Findings& findings, const GEOMobj& obj) {
    const GEOMspheres& spheres = obj.sphere;
    const std::int64_t n = spheres.centers.used;
    if (n < 0)
        return findings.fail("negative number of spheres/dots: %d", asInt(n));
    if (spheres.radii.used != 0 && spheres.radii.used != n)
        return findings.fail("no. of radii: %d different from no. of verts: %d",
                             asInt(spheres.radii.used), asInt(n));
    return isInRange(findings, "radii", &spheres.radii, 0, kLargestSize) &&
           checkPart(findings, obj.flags & geom::kSphereFlags, geom::partOf(obj), n, 0);
}

bool checkLabel(const Findings& findings, const GEOMobj& obj) {
    const GEOMlabels& labels = obj.label;
    return isNumber(findings, "label offset", &labels.offsets) &&
           isInRange(findings, "label height", &labels.heights, 0, kLargestSize) &&
           checkColors(findings, obj.flags, &labels.colors, labels.positions.used) &&
           isNumber(findings, "verts", &labels.positions) &&
           isInRange(findings, "colors", &labels.colors, 0, 1);
}

bool checkObject(const Findings& findings, const GEOMobj* obj) {
    if (obj == nullptr)
        return findings.fail("NULL object received");
    if (obj->type < GEOM_MESH || obj->type > GEOM_LABEL)
        return findings.fail("invalid object type %d!", static_cast<int>(obj->type));
    if (obj->has_extent != 0 && !checkExtent(findings, *obj))
        return false;
    switch (obj->type) {
    case GEOM_MESH:
        return checkMesh(findings, *obj);
    case GEOM_POLYHEDRON:
        return checkPolyhedron(findings, *obj);
    case GEOM_POLYTRIANGLE:
        return checkPolytriangle(findings, *obj);
    case GEOM_SPHERE:
        return checkSphere(findings, *obj);
    default:
        return checkLabel(findings, *obj);
    }
}

} // namespace

int GEOMcheck_obj(const GEOMobj* obj, int /*options*/, GEOMreporter reporter) {
    return checkObject(Findings(reporter), obj) ? 1 : 0;
}
