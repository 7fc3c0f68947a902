#include "tests/evaluate/evaluation.h"

namespace meshcast::evaluate {
namespace {

const std::string kTexture = "Texture2 { image 1 1 1 255 } ";

/// The texture coordinates of the vertices at a position. If `normal` is not zero, only vertices
/// with that normal count.
std::string uvsAt(const Geometry& geometry, const Vec3& position, const Vec3& normal = {}) {
    const auto isNear = [](const Vec3& a, const Vec3& b) {
        return std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]) < 1e-4F;
    };
    Geometry found;
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        if (isNear(geometry.positions[i], position) &&
            (normal == Vec3{} || isNear(geometry.normals[i], normal))) {
            found.positions.push_back({});
            found.uvs.push_back(geometry.uvs[i]);
        }
    }
    std::string text;
    for (std::string rest = geometryText(found); rest.find("uv ") != std::string::npos;) {
        rest = rest.substr(rest.find("uv ") + 3);
        text += (text.empty() ? "" : ", ") + rest.substr(0, rest.find('\n'));
    }
    return text;
}

Geometry solid(const std::string& shape) {
    const Model model = evaluated("Separator { " + kTexture + shape + " }");
    EXPECT_TRUE(facesOutward(model.geometries.at(0))) << shape;
    EXPECT_TRUE(model.materials.at(0).isDoubleSided);
    EXPECT_TRUE(model.materials[0].texture);
    return model.geometries[0];
}

TEST(TextureMapping, CubeShowsTheImageUprightOnEachSide) {
    const Geometry cube = solid("Cube { }");
    struct Case {
        Vec3 normal, lowerLeft, upperRight;
    };
    for (const Case& c :
         {Case{{0, 0, 1}, {-1, -1, 1}, {1, 1, 1}}, Case{{0, 0, -1}, {1, -1, -1}, {-1, 1, -1}},
          Case{{-1, 0, 0}, {-1, -1, -1}, {-1, 1, 1}}, Case{{1, 0, 0}, {1, -1, 1}, {1, 1, -1}},
          Case{{0, 1, 0}, {-1, 1, 1}, {1, 1, -1}}, Case{{0, -1, 0}, {-1, -1, -1}, {1, -1, 1}}}) {
        EXPECT_EQ(uvsAt(cube, c.lowerLeft, c.normal), "0 0");
        EXPECT_EQ(uvsAt(cube, c.upperRight, c.normal), "1 1");
    }
}

TEST(TextureMapping, RoundSolidsAreWrappedStartingAtTheBack) {
    const Geometry cylinder = solid("Cylinder { }");
    // The image begins and ends at the back, with left, front and right in between.
    EXPECT_EQ(uvsAt(cylinder, {0, -1, -1}, {0, 0, -1}), "0 0, 1 0");
    EXPECT_EQ(uvsAt(cylinder, {-1, 1, 0}, {-1, 0, 0}), "0.25 1");
    EXPECT_EQ(uvsAt(cylinder, {0, 1, 1}, {0, 0, 1}), "0.5 1");
    EXPECT_EQ(uvsAt(cylinder, {1, -1, 0}, {1, 0, 0}), "0.75 0");
    // Caps: towards the back is up on the top and down on the bottom.
    EXPECT_EQ(uvsAt(cylinder, {0, 1, -1}, {0, 1, 0}), "0.5 1");
    EXPECT_EQ(uvsAt(cylinder, {1, 1, 0}, {0, 1, 0}), "1 0.5");
    EXPECT_EQ(uvsAt(cylinder, {0, -1, -1}, {0, -1, 0}), "0.5 0");
    EXPECT_EQ(uvsAt(cylinder, {-1, -1, 0}, {0, -1, 0}), "0 0.5");

    const Geometry cone = solid("Cone { }");
    EXPECT_EQ(uvsAt(cone, {-1, -1, 0}, {-0.894427F, 0.447214F, 0}), "0.25 0");
    EXPECT_EQ(uvsAt(cone, {0, -1, 1}, {0, -1, 0}), "0.5 1");
    EXPECT_EQ(uvsAt(cone, {0, 1, 0}).substr(0, 11), "0.01563 1, ");

    const Geometry sphere = solid("Sphere { }");
    EXPECT_EQ(uvsAt(sphere, {0, 0, -1}), "0 0.5, 1 0.5");
    EXPECT_EQ(uvsAt(sphere, {-1, 0, 0}), "0.25 0.5");
    EXPECT_EQ(uvsAt(sphere, {0, -1, 0}).substr(0, 11), "0.01563 0, ");
}

TEST(TextureMapping, SolidsHaveTheirPartsAndSegments) {
    const auto triangles = [](const std::string& shape, std::uint32_t segments) {
        EvaluateOptions options;
        options.segments = segments;
        const Model model = evaluated(shape, options);
        return model.geometries.empty() ? 0 : model.geometries[0].indices.size() / 3;
    };
    EXPECT_EQ(triangles("Sphere { }", 32), 32U * 2 * 15);
    EXPECT_EQ(triangles("Cylinder { }", 32), 32U * 4);
    EXPECT_EQ(triangles("Cylinder { parts (TOP | BOTTOM) }", 24), 48U);
    EXPECT_EQ(triangles("Cone { parts SIDES }", 24), 24U);
    EXPECT_EQ(triangles("Cone { }", 1), 6U);
    EXPECT_EQ(
        linesOf("Separator { Sphere { radius -3 } Cylinder { radius 2 height 6 } }", {"instance"}),
        "instance \"\" mesh 0 matrix 3 0 0 0, 0 3 0 0, 0 0 3 0\n"
        "instance \"\" mesh 1 matrix 2 0 0 0, 0 3 0 0, 0 0 2 0\n");
}

std::string mapped(const std::string& points, const Vec3& at, const std::string& before = "",
                   const std::string& more = "") {
    const Model model =
        evaluated("Separator { " + kTexture + before + "Coordinate3 { point [ " + points +
                  " ] } IndexedFaceSet { coordIndex [ 0 1 2 3 -1 0 1 99 ] " + more + " } }");
    return uvsAt(model.geometries.at(0), at);
}

TEST(TextureMapping, FaceSetsAreMappedAlongTheLongestSides) {
    // z is the longest side, then x. Unused points do not count.
    const std::string flat = "1 5 2, 1 5 6, 3 5 6, 3 5 2, 900 900 900";
    EXPECT_EQ(mapped(flat, {1, 5, 2}), "0 0");
    EXPECT_EQ(mapped(flat, {1, 5, 6}), "1 0");
    EXPECT_EQ(mapped(flat, {3, 5, 6}), "1 0.5");
    // Between sides of equal length, x comes before y, and y before z.
    EXPECT_EQ(mapped("0 0 0, 2 0 0, 2 2 0, 0 2 0", {2, 0, 0}), "1 0");
    EXPECT_EQ(mapped("0 0 0, 0 2 0, 0 2 2, 0 0 2", {0, 2, 0}), "1 0");
    EXPECT_EQ(mapped("0 0 0, 2 0 0, 2 2 2, 0 2 2", {0, 2, 2}), "0 1");
}

TEST(TextureMapping, FaceSetsMayHaveCoordinates) {
    const std::string square = "0 0 0, 1 0 0, 1 1 0, 0 1 0";
    const std::string four = "TextureCoordinate2 { point [ 0.1 0.2, 3 4, 5 6, 7 8 ] } ";
    EXPECT_EQ(mapped(square, {1, 0, 0}, four), "3 4");
    EXPECT_EQ(mapped(square, {1, 0, 0}, four, "textureCoordIndex [ 0 3 2 1 -1 ]"), "7 8");
    // With an invalid index or too few indices: as if there were no coordinates.
    EXPECT_EQ(mapped(square, {1, 0, 0}, four, "textureCoordIndex [ 0 9 2 1 ]"), "1 0");
    EXPECT_EQ(mapped(square, {1, 0, 0}, four, "textureCoordIndex [ 0 1 ]"), "1 0");
    EXPECT_EQ(mapped(square, {1, 0, 0}, "TextureCoordinate2 { }"), "1 0");
    // Without an image there are no texture coordinates.
    EXPECT_TRUE(evaluated("Separator { " + four + "Cube { } }").geometries.at(0).uvs.empty());
}

TEST(TextureMapping, TransformsAreCombined) {
    const auto corner = [](const std::string& transforms) {
        const Model model = evaluated("Separator { " + kTexture + transforms + " Cube { } }");
        return uvsAt(model.geometries.at(0), {1, 1, 1}, {0, 0, 1});
    };
    // 1 1 minus the center is 0 1, scaled 0 3, rotated -3 0, plus the center -2 0, translated 8 20.
    EXPECT_EQ(corner("Texture2Transform { center 1 0 scaleFactor 2 3 rotation 1.5707963 "
                     "translation 10 20 }"),
              "8 20");
    // The innermost transform acts first: (1 + 1) x 2.
    EXPECT_EQ(corner("Texture2Transform { scaleFactor 2 2 } Texture2Transform { translation 1 0 }"),
              "4 2");
    EXPECT_EQ(corner("Separator { Texture2Transform { scaleFactor 2 2 } }"), "1 1");
    EXPECT_EQ(corner("TransformSeparator { Texture2Transform { scaleFactor 2 2 } }"), "2 2");
}

} // namespace
} // namespace meshcast::evaluate
