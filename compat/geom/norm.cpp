// Normal generation. All operations are in float and in the order written here, because streams
// are compared byte for byte.
//
// A polygon's normal is the sum of the cross products at consecutive triples of its corners. Smooth
// normals add it to all the polygon's vertices and normalise the sums; facet normals first give
// every corner a vertex of its own. Mesh normals come from the neighbours in the grid.

#include "compat/geom/norm.h"

#include "compat/geom/list.h"
#include "compat/geom/memory.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

using geom::AllocationSite;

// A polygon is degenerate if all components of its facet normal are smaller.
constexpr double kDegenerate = 1e-15;

// A vertex normal of this length or less has no direction.
constexpr double kShortest = 1e-24;

constexpr const char* kModule = "compat/geom/norm";
constexpr AllocationSite kMeshNormals{kModule, __LINE__, "Can't alloc mesh normals"};
constexpr AllocationSite kSmoothNormals{kModule, __LINE__, "malloc fails allocating new normals"};
constexpr AllocationSite kCornerVertices{kModule, __LINE__, "can't alloc new verts"};
constexpr AllocationSite kCornerColors{kModule, __LINE__, "can't alloc new colors"};
constexpr AllocationSite kCornerData{kModule, __LINE__, "can't alloc vdata"};
constexpr AllocationSite kCornerTrans{kModule, __LINE__, "can't alloc vtrans"};
constexpr AllocationSite kCornerNormals{kModule, __LINE__, "can't allocate new norm"};

struct Vec3 {
    float x, y, z;
};

Vec3 load(const float* at) { return {at[0], at[1], at[2]}; }

void store(float* at, const Vec3& v) {
    at[0] = v.x;
    at[1] = v.y;
    at[2] = v.z;
}

Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

Vec3& operator+=(Vec3& a, const Vec3& b) {
    a.x += b.x;
    a.y += b.y;
    a.z += b.z;
    return a;
}

Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double length(const Vec3& v) {
    const float squares = v.x * v.x + v.y * v.y + v.z * v.z;
    return std::sqrt(static_cast<double>(squares));
}

Vec3 divide(const Vec3& v, double by) {
    return {static_cast<float>(v.x / by), static_cast<float>(v.y / by),
            static_cast<float>(v.z / by)};
}

bool isWithin(float component, double tolerance) {
    return -tolerance < component && component < tolerance;
}

// The vector scaled to length 1. A zero vector stays zero.
Vec3 normalized(const Vec3& v) {
    const double l = length(v);
    return l == 0 ? v : divide(v, l);
}

void normalizeList(const GEOMvector_list& normals) {
    for (std::int64_t i = 0; i < normals.used; ++i) {
        float* at = normals.data + i * 3;
        store(at, normalized(load(at)));
    }
}

float* newVectors(std::int64_t n, const AllocationSite& site) {
    return static_cast<float*>(geom::allocateZeroed(n, 3 * sizeof(float), site));
}

void attachNormals(GEOMobj& obj, float* normals, std::int64_t n) {
    GEOMadd_normals(&obj, normals, n, GEOM_TAKE);
    geom::normalizeObject(obj);
}

// ---- Polyhedra

// One polygon: its corners as 1-based vertex indices.
struct Polygon {
    std::int64_t count;
    const std::int64_t* corners;
};

bool namesVertex(std::int64_t index, std::int64_t vertices) {
    return index >= 1 && index <= vertices;
}

// A polygon with an index out of range contributes to no normal, not even at its other corners.
bool isSound(const Polygon& polygon, std::int64_t vertices) {
    return std::all_of(polygon.corners, polygon.corners + polygon.count,
                       [=](std::int64_t index) { return namesVertex(index, vertices); });
}

// The unit normal of a polygon; zero if it is degenerate or has fewer than three corners.
Vec3 facetNormal(const Polygon& polygon, const GEOMvector_list& vertices, double tolerance) {
    const auto corner = [&](std::int64_t j) {
        return load(vertices.data + (polygon.corners[j] - 1) * 3);
    };
    Vec3 sum{0, 0, 0};
    for (std::int64_t j = 0; j + 2 < polygon.count; ++j)
        sum += cross(corner(j + 1) - corner(j), corner(j + 2) - corner(j));
    if (isWithin(sum.x, tolerance) && isWithin(sum.y, tolerance) && isWithin(sum.z, tolerance))
        return {0, 0, 0};
    std::array unit{sum.x, sum.y, sum.z};
    geom::normalizeVector(unit.data());
    return load(unit.data());
}

void smoothNormals(GEOMobj& obj, double tolerance) {
    const GEOMpolyhedron& solid = obj.polyhedron;
    const std::int64_t n = solid.vertices.used;
    float* normals = newVectors(n, kSmoothNormals);

    const std::int64_t* entry = solid.polygons.data;
    for (std::int64_t p = 0; p < solid.polygons.polygons; ++p) {
        const Polygon polygon{entry[0], entry + 1};
        entry += polygon.count + 1;
        if (!isSound(polygon, n))
            continue;
        const Vec3 normal = facetNormal(polygon, solid.vertices, tolerance);
        for (std::int64_t j = 0; j < polygon.count; ++j) {
            float* at = normals + (polygon.corners[j] - 1) * 3;
            Vec3 sum = load(at);
            sum += normal;
            store(at, sum);
        }
    }
    for (std::int64_t i = 0; i < n; ++i) {
        float* at = normals + i * 3;
        const Vec3 sum = load(at);
        const double l = length(sum);
        store(at, l <= kShortest ? Vec3{0, 0, 0} : divide(sum, l));
    }
    attachNormals(obj, normals, n);
}

// A new array with one element per polygon corner: the element that a list holds for the corner's
// vertex, or zero if the index is out of range.
template <class T, int N>
T* spread(const GEOMlist<T, N>& list, const GEOMpolyhedron& solid, const AllocationSite& site) {
    const GEOMpolygon_list& polygons = solid.polygons;
    const std::int64_t known = std::min(list.used, solid.vertices.used);
    auto* perCorner =
        static_cast<T*>(geom::allocateZeroed(polygons.indices, geom::elementBytes(list), site));
    T* out = perCorner;
    const std::int64_t* entry = polygons.data;
    for (std::int64_t p = 0; p < polygons.polygons; ++p) {
        const std::int64_t count = *entry++;
        for (std::int64_t j = 0; j < count; ++j, ++entry, out += N) {
            if (!namesVertex(*entry, known))
                continue;
            for (int i = 0; i < N; ++i)
                out[i] = list.data[(*entry - 1) * N + i];
        }
    }
    return perCorner;
}

void numberCorners(GEOMpolygon_list& polygons) {
    std::int64_t corner = 0;
    std::int64_t* entry = polygons.data;
    for (std::int64_t p = 0; p < polygons.polygons; ++p) {
        const std::int64_t count = *entry++;
        for (std::int64_t j = 0; j < count; ++j)
            *entry++ = ++corner;
    }
}

void facetNormals(GEOMobj& obj, double tolerance) {
    GEOMpolyhedron& solid = obj.polyhedron;
    const std::int64_t corners = solid.polygons.indices;
    // Build all arrays before replacing any list, since they are built from the lists.
    const auto spreadIf = [&](std::uint32_t bit, const auto& list, const AllocationSite& site) {
        return (obj.flags & bit) != 0 ? spread(list, solid, site) : nullptr;
    };
    float* vertices = spread(solid.vertices, solid, kCornerVertices);
    float* colors = spreadIf(GEOM_HAS_COLORS, solid.colors, kCornerColors);
    std::int32_t* data = spreadIf(GEOM_HAS_VERTEX_DATA, solid.vertex_data, kCornerData);
    float* trans = spreadIf(GEOM_HAS_VERTEX_TRANS, solid.vertex_trans, kCornerTrans);
    float* normals = newVectors(corners, kCornerNormals);

    float* out = normals;
    const std::int64_t* entry = solid.polygons.data;
    for (std::int64_t p = 0; p < solid.polygons.polygons; ++p) {
        const Polygon polygon{entry[0], entry + 1};
        const Vec3 facet = isSound(polygon, solid.vertices.used)
                               ? facetNormal(polygon, solid.vertices, tolerance)
                               : Vec3{0, 0, 0};
        // All corners share this normal, so normalise it once instead of calling
        // normalizeObject().
        const Vec3 normal = normalized(facet);
        for (std::int64_t j = 0; j < polygon.count; ++j, out += 3)
            store(out, normal);
        entry += polygon.count + 1;
    }

    const auto replace = [corners](auto& list, const auto* perCorner) {
        if (perCorner != nullptr)
            geom::adopt(list, perCorner, corners);
    };
    replace(solid.vertices, vertices);
    replace(solid.colors, colors);
    replace(solid.vertex_data, data);
    replace(solid.vertex_trans, trans);
    numberCorners(solid.polygons);
    GEOMadd_normals(&obj, normals, corners, GEOM_TAKE);
}

// ---- Meshes

void meshNormals(GEOMobj& obj) {
    const GEOMmesh& mesh = obj.mesh;
    const std::int64_t n = geom::multiplyCounts(mesh.u, mesh.v);
    if (mesh.vertices.used < n)
        return; // a grid without its vertices has no normals
    float* normals = newVectors(n, kMeshNormals);
    const auto at = [&](std::int64_t column, std::int64_t row) {
        return load(mesh.vertices.data + (row * mesh.u + column) * 3);
    };
    const float* end = normals + n * 3;
    float* out = normals;
    for (std::int64_t row = 0; out != end; ++row) {
        const std::int64_t previousRow = std::max<std::int64_t>(row - 1, 0);
        const std::int64_t nextRow = std::min(row + 1, mesh.v - 1);
        for (std::int64_t column = 0; column < mesh.u; ++column, out += 3) {
            const std::int64_t previousColumn = std::max<std::int64_t>(column - 1, 0);
            const std::int64_t nextColumn = std::min(column + 1, mesh.u - 1);
            store(out, cross(at(previousColumn, row) - at(nextColumn, row),
                             at(column, previousRow) - at(column, nextRow)));
        }
    }
    attachNormals(obj, normals, n);
}

} // namespace

void geom::generateNormals(GEOMobj& obj, int mode, double tolerance) {
    constexpr int facets = 1;
    if ((obj.flags & GEOM_HAS_NORMALS) != 0)
        return;
    if (obj.type == GEOM_MESH) {
        if (mode == facets)
            GEOMerror("Warning: Can't compute facet normals of mesh objects.\n");
        meshNormals(obj);
    } else if (obj.type == GEOM_POLYHEDRON) {
        if (mode == facets)
            facetNormals(obj, tolerance);
        else
            smoothNormals(obj, tolerance);
    }
}

void geom::normalizeObject(GEOMobj& obj) {
    if (obj.type == GEOM_MESH)
        normalizeList(obj.mesh.normals);
    else if (obj.type == GEOM_POLYHEDRON)
        normalizeList(obj.polyhedron.normals);
    else if (obj.type == GEOM_POLYTRIANGLE && obj.polytriangle.strip_normals != nullptr)
        for (std::int64_t i = 0; i < obj.polytriangle.strips; ++i)
            normalizeList(obj.polytriangle.strip_normals[i]);
}

void geom::normalizeVector(float* vector) {
    const Vec3 v = load(vector);
    const double l = length(v);
    store(vector, l == 0 ? Vec3{0, 0, 1} : divide(v, l));
}

void GEOMgen_normals(GEOMobj* obj, int mode) { geom::generateNormals(*obj, mode, kDegenerate); }
