#include "compat/geom/norm.h"
#include "tests/compat/geom/harness.h"

#include <cmath>

namespace {

using Floats = std::vector<float>;

constexpr float kCube[] = {-1, -1, 1, 1, -1, 1, 1, -1, -1, -1, -1, -1,
                           -1, 1,  1, 1, 1,  1, 1, 1,  -1, -1, 1,  -1};
constexpr std::int32_t kFaces[] = {4, 1, 2, 6, 5, 4, 3, 4, 8, 7, 4, 1, 5, 8, 4, 4,
                                   2, 3, 7, 6, 4, 2, 1, 4, 3, 4, 5, 6, 7, 8, 0};
// The outward axes of those faces.
constexpr float kAxes[][3] = {{0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}};

Object polyhedron(const Floats& vertices, const std::vector<std::int32_t>& polygons) {
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_vertices(obj.get(), vertices.data(), static_cast<std::int64_t>(vertices.size() / 3), 0);
    GEOMadd_polygons(obj.get(), polygons.data(), 0, 0);
    return obj;
}

Object cube() {
    return polyhedron({std::begin(kCube), std::end(kCube)}, {std::begin(kFaces), std::end(kFaces)});
}

} // namespace

TEST(Normals, OfCubeFacetsUnshareItsVertices) {
    const Object obj = cube();
    std::vector<GEOMpacked_color> colors(8);
    for (std::size_t i = 0; i < 8; ++i)
        colors[i] = {0, static_cast<std::uint8_t>(i), 0, 0};
    const std::int32_t data[] = {10, 20, 30, 40, 50, 60}; // none for the last two vertices
    GEOMadd_colors(obj.get(), colors.data(), 8, 0);
    GEOMadd_vertex_data(obj.get(), data, 6, 0);
    GEOMadd_vertex_trans(obj.get(), kCube, 8, 0);
    GEOMgen_normals(obj.get(), 1);

    const GEOMpolyhedron& solid = obj->polyhedron;
    EXPECT_EQ(obj->flags, 0x183u);
    EXPECT_EQ(solid.normals.used, 24);
    ASSERT_EQ(solid.vertices.used, 24);
    for (std::int64_t face = 0, corner = 0; face < 6; ++face) {
        EXPECT_EQ(solid.polygons.data[face * 5], 4);
        for (std::int64_t j = 1; j <= 4; ++j, ++corner) {
            const std::int32_t vertex = kFaces[face * 5 + j] - 1;
            EXPECT_EQ(solid.polygons.data[face * 5 + j], corner + 1);
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_EQ(solid.normals.data[corner * 3 + axis], kAxes[face][axis]);
                EXPECT_EQ(solid.vertices.data[corner * 3 + axis], kCube[vertex * 3 + axis]);
            }
            EXPECT_EQ(solid.colors.data[corner * 3], static_cast<float>(vertex) / 255);
            EXPECT_EQ(solid.vertex_data.data[corner], vertex < 6 ? data[vertex] : 0);
            EXPECT_EQ(solid.vertex_trans.data[corner], kCube[vertex]);
        }
    }
    EXPECT_EQ(solid.polygons.data[30], 0);
}

TEST(Normals, OfASmoothCubePointAlongItsDiagonals) {
    const Object obj = cube();
    GEOMgen_normals(obj.get(), 0);
    EXPECT_EQ(obj->polyhedron.vertices.used, 8);
    ASSERT_EQ(obj->polyhedron.normals.used, 8);
    const auto third = static_cast<float>(1 / std::sqrt(3.0));
    for (std::size_t i = 0; i < 24; ++i)
        EXPECT_FLOAT_EQ(obj->polyhedron.normals.data[i], kCube[i] * third);
    GEOMgen_normals(obj.get(), 1); // given once, they stay
    EXPECT_EQ(obj->polyhedron.normals.used, 8);
}

TEST(Normals, SumTriplesOfConsecutiveCorners) {
    // a bent pentagon: a fan from the first corner would give another direction
    const Object obj =
        polyhedron({0, 0, 0, 2, 0, 0, 2, 2, 1, 1, 3, 0, 0, 2, 0}, {5, 1, 2, 3, 4, 5, 0});
    GEOMgen_normals(obj.get(), 1);
    const float n[] = {0 - 3 - 1, -2 - 1 + 1, 4 + 2 + 2};
    const double length = std::sqrt(static_cast<double>(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]));
    for (int i = 0; i < 3; ++i)
        EXPECT_FLOAT_EQ(obj->polyhedron.normals.data[i], static_cast<float>(n[i] / length));
}

TEST(Normals, LeaveOutPolygonsThatHaveNone) {
    const Floats vertices = {0, 0, 0, 1, 0, 0, 0, 1, 0, 2, 0, 0, 5, 5, 5};
    struct Case {
        std::vector<std::int32_t> polygons;
        Floats smooth, facet, corners;
    };
    const Floats none(15);
    const Case cases[] = {
        {{3, 1, 2, 4, 0}, none, Floats(9), {0, 0, 0, 1, 0, 0, 2, 0, 0}},    // collinear
        {{2, 1, 2, 1, 5, 0}, none, Floats(9), {0, 0, 0, 1, 0, 0, 5, 5, 5}}, // too few corners
        {{3, 1, 2, 0x7FFFFFFF, 3, 1, 2, 3, 0},                              // a bad corner
         {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0},
         {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1},
         {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0}},
        {{4, 0, 1, 2, 3, 3, 6, -5, 1, 0}, none, Floats(21), {0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1,
                                                             0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {{0}, none, {}, {}},
    };
    for (const Case& c : cases) {
        const Object smooth = polyhedron(vertices, c.polygons);
        GEOMgen_normals(smooth.get(), 0);
        EXPECT_EQ(values_of(smooth->polyhedron.normals), c.smooth);
        const Object facet = polyhedron(vertices, c.polygons);
        GEOMgen_normals(facet.get(), 1);
        EXPECT_EQ(values_of(facet->polyhedron.normals), c.facet);
        EXPECT_EQ(values_of(facet->polyhedron.vertices), c.corners);
    }
    for (const int mode : {0, 1}) { // no vertices, no polygon list
        const Object obj = make(GEOM_POLYHEDRON);
        GEOMgen_normals(obj.get(), mode);
        EXPECT_EQ(obj->flags, GEOM_HAS_NORMALS);
    }
}

TEST(Normals, OfAMeshComeFromTheNeighbours) {
    // 3 x 2 grid over x and y, height 1 at the middle of the first row
    const Floats grid = {0, 0, 0, 1, 0, 1, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0};
    const Object obj(GEOMcreate_mesh(nullptr, grid.data(), 3, 2, 0));
    EXPECT_EQ(captured_stderr([&] { GEOMgen_normals(obj.get(), 1); }),
              "GEOM error: Warning: Can't compute facet normals of mesh objects.\n\n");
    EXPECT_EQ(obj->flags, GEOM_HAS_NORMALS);
    const Floats cross = {-1, 0, 1, 0, 2, 2, 1, 0, 1, 0, 0, 1, 0, 2, 2, 0, 0, 1};
    for (std::size_t i = 0; i < cross.size(); i += 3) {
        Floats unit(cross.begin() + static_cast<long>(i), cross.begin() + static_cast<long>(i) + 3);
        geom::normalize_vector(unit.data());
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_EQ(obj->mesh.normals.data[i + axis], unit[axis]) << i;
    }
    const Object line(GEOMcreate_mesh(nullptr, grid.data(), 1, 6, 0)); // one column: no direction
    GEOMgen_normals(line.get(), 0);
    EXPECT_EQ(values_of(line->mesh.normals), Floats(18));
}

TEST(Normals, OfOtherKindsAreLeftAlone) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    GEOMadd_vertices(obj.get(), kCube, 3, 0);
    GEOMgen_normals(obj.get(), 0);
    EXPECT_EQ(obj->flags, 0u);
    obj->polytriangle.strip_normals =
        block<GEOMvector_list>({{2, 2, block<float>({0, 0, 0, 3, 0, 4})}});
    geom::normalize_object(*obj);
    EXPECT_EQ(values_of(obj->polytriangle.strip_normals[0]), (Floats{0, 0, 0, 0.6F, 0, 0.8F}));
}
