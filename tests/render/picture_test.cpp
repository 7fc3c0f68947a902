#include "render/picture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// Pictures are checked by coverage and colour, since drivers differ in single pixels.
namespace {

using namespace meshcast::evaluate;
using meshcast::render::drawPicture;
using meshcast::render::PictureOptions;

using Rgba = std::array<int, 4>;

/// Builds a model of squares with sides of length 2.
struct Squares {
    /// Adds a square that faces +Z before the matrix is applied; returns its own material.
    Material& add(const Matrix& matrix, const Color& color) {
        if (model.geometries.empty()) {
            Geometry square;
            square.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
            square.normals.assign(4, {0, 0, 1});
            square.uvs = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
            square.indices = {0, 1, 2, 0, 2, 3};
            model.geometries.push_back(square);
        }
        const auto number = static_cast<std::uint32_t>(model.meshes.size());
        model.materials.push_back({});
        model.materials.back().baseColor = color;
        model.materials.back().isBlended = color[3] < 1;
        model.meshes.push_back({{{0, 0, 6, number}}});
        model.instances.push_back({number, matrix, "", {}});
        return model.materials.back();
    }

    Model model;
};

const Color kRed = {1, 0, 0, 1}, kGreen = {0, 1, 0, 1}, kBlue = {0, 0, 1, 1};
const Rgba kWhite = {255, 255, 255, 255};

Matrix at(float x, float y, float z, float scale = 1) {
    return {scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0, x, y, z, 1};
}

PictureOptions options(const std::string& view, std::uint32_t size = 100) {
    return {size, size, view, {{255, 255, 255}}};
}

Pixels drawn(Model model, const PictureOptions& how) {
    auto picture = drawPicture(std::move(model), how);
    EXPECT_TRUE(std::holds_alternative<Pixels>(picture)) << std::get<std::string>(picture);
    return std::get<Pixels>(std::move(picture));
}

/// The pixel at a fraction of the width and the height, from the upper left corner.
Rgba pixel(const Pixels& picture, double x, double y) {
    const auto column = static_cast<std::size_t>(x * picture.width);
    const auto row = static_cast<std::size_t>(y * picture.height);
    Rgba color = kWhite;
    for (std::size_t i = 0; i < picture.components; ++i) {
        color[i] = picture.bytes[(row * picture.width + column) * picture.components + i];
    }
    return color;
}

double coverage(const Pixels& picture) {
    std::size_t covered = 0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += picture.components) {
        covered += picture.bytes[i] < 250 || picture.bytes[i + 1] < 250 ? 1 : 0;
    }
    return static_cast<double>(covered) / picture.width / picture.height;
}

MATCHER_P(IsAbout, color, "") {
    for (std::size_t i = 0; i < 4; ++i) {
        if (std::abs(arg[i] - color[i]) > 2) {
            return false;
        }
    }
    return true;
}

TEST(Picture, FitsScenesOfAnySizeAndShowsFacingColoursExactly) {
    const Color grey = {0.2140411F, 0.2140411F, 0.2140411F, 1}; // 0.5 in sRGB.
    for (const float scale : {1.0F, 1e-18F, 1e18F}) {
        Squares squares;
        squares.add(at(5 * scale, -7 * scale, 3 * scale, scale), grey);
        const Pixels picture = drawn(squares.model, options("front"));
        EXPECT_THAT(pixel(picture, 0.5, 0.5), IsAbout(Rgba{128, 128, 128, 255})) << scale;
        EXPECT_NEAR(coverage(picture), 1 / (1.05 * 1.05), 0.02) << scale;
    }
    EXPECT_EQ(coverage(drawn(Model(), options("fit"))), 0);
}

TEST(Picture, ShowsEachSideFromItsView) {
    const Matrix turnedUp = {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 1, 0, 1};
    const Matrix turnedLeft = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, -1, 0, 0, 1};
    Squares squares;
    squares.add(at(0, 0, 1), kRed).isDoubleSided = false;
    squares.add(turnedUp, kGreen).isDoubleSided = false;
    squares.add(turnedLeft, kBlue).isDoubleSided = false;
    EXPECT_THAT(pixel(drawn(squares.model, options("front")), 0.5, 0.5),
                IsAbout(Rgba{255, 0, 0, 255}));
    EXPECT_THAT(pixel(drawn(squares.model, options("top")), 0.5, 0.5),
                IsAbout(Rgba{0, 255, 0, 255}));
    EXPECT_THAT(pixel(drawn(squares.model, options("left")), 0.5, 0.5),
                IsAbout(Rgba{0, 0, 255, 255}));
    const Pixels all = drawn(squares.model, options("fit"));
    std::array<double, 3> shares{};
    for (std::size_t i = 0; i < all.bytes.size(); ++i) {
        // Each side has only one of the three components.
        shares[i % 3] += all.bytes[i] > 100 ? 1e-4 : 0;
    }
    const double empty = 1 - coverage(all);
    EXPECT_NEAR(shares[0] - empty, 0.4, 0.05) << "the front";
    EXPECT_NEAR(shares[1] - empty, 0.15, 0.05) << "the top";
    EXPECT_NEAR(shares[2] - empty, 0, 0.02) << "the left side, from the right";
}

TEST(Picture, IsTakenFromACameraByItsNameOrNumber) {
    Squares squares;
    squares.add(at(0, 0, 0), kRed);
    Camera near;
    near.name = "House/Near";
    near.matrix = at(0, 0, 2);
    near.heightAngle = 2 * 0.4636476F; // A square with sides of 2 fills it at that distance.
    near.nearDistance = 0.1F;
    near.farDistance = 100;
    Camera flat = near;
    flat.name = "";
    flat.isPerspective = false;
    flat.height = 4;
    squares.model.cameras = {near, flat};
    for (const char* const name : {"House/Near", "Near", "1"}) {
        EXPECT_GT(coverage(drawn(squares.model, options(name))), 0.97) << name;
    }
    PictureOptions wide = options("2");
    EXPECT_NEAR(coverage(drawn(squares.model, wide)), 0.25, 0.01);
    std::swap(wide.height, wide.width = 50); // The camera height fits the shorter side.
    EXPECT_NEAR(coverage(drawn(squares.model, wide)), 0.125, 0.02);
    for (const char* const name : {"near", "ear", "3", "0", ""}) {
        const auto problem = drawPicture(Model(squares.model), options(name));
        EXPECT_EQ(std::get<std::string>(problem),
                  "there is no view \"" + std::string(name) +
                      "\": it can be fit, front, top, left, or a camera of the scene: 1 "
                      "(House/Near), 2");
    }
}

TEST(Picture, BlendsTransparentSurfacesFromBackToFront) {
    Squares squares;
    squares.add(at(0, 0, 1), {1, 0, 0, 0.5F}); // The nearest square is the first in the scene.
    squares.add(at(0, 0, -1), {0, 0, 1, 0.5F});
    PictureOptions how = options("front");
    EXPECT_THAT(pixel(drawn(squares.model, how), 0.5, 0.5), IsAbout(Rgba{191, 64, 128, 255}));
    how.background.reset();
    const Pixels picture = drawn(squares.model, how);
    EXPECT_THAT(pixel(picture, 0.5, 0.5), IsAbout(Rgba{170, 0, 85, 191}));
    EXPECT_EQ(pixel(picture, 0.01, 0.01)[3], 0);
}

TEST(Picture, ShowsFrontsOfMirroredShapesAndHidesBacksOfSolidOnes) {
    Matrix mirrored = at(0, 0, 0);
    mirrored[0] = -1;
    Squares squares;
    squares.add(mirrored, kRed).isDoubleSided = false;
    EXPECT_THAT(pixel(drawn(squares.model, options("front")), 0.5, 0.5),
                IsAbout(Rgba{255, 0, 0, 255}));
    mirrored[10] = -1; // Half a turn: the back.
    squares.model.instances[0].matrix = mirrored;
    EXPECT_EQ(coverage(drawn(squares.model, options("front"))), 0);
    squares.model.materials[0].isDoubleSided = true;
    EXPECT_THAT(pixel(drawn(squares.model, options("front")), 0.5, 0.5),
                IsAbout(Rgba{255, 0, 0, 255}));
}

TEST(Picture, IsLitByTheScenesLightsOrAHeadlight) {
    Squares squares;
    Material& material = squares.add(at(0, 0, 0), {1, 1, 1, 1});
    const auto middle = [&] { return pixel(drawn(squares.model, options("front")), 0.5, 0.5)[0]; };
    EXPECT_GT(middle(), 253);
    Light light;
    light.intensity = 0.35F; // With the ambient light, half of full light: 188 in sRGB.
    squares.model.lights = {light};
    EXPECT_NEAR(middle(), 188, 2);
    squares.model.lights[0].matrix = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_NEAR(middle(), 108, 2) << "from the side, only the ambient light is left";
    Light spot;
    spot.kind = Light::Kind::kSpot;
    spot.matrix = at(0, 0, 1);
    spot.innerAngle = 0.2F;
    spot.outerAngle = 0.3F;
    squares.model.lights = {spot};
    const Pixels cone = drawn(squares.model, options("front"));
    EXPECT_GT(pixel(cone, 0.5, 0.5)[0], 253);
    EXPECT_NEAR(pixel(cone, 0.8, 0.8)[0], 108, 2);
    material.isUnlit = true;
    EXPECT_GT(pixel(drawn(squares.model, options("front")), 0.8, 0.8)[0], 253);
}

TEST(Picture, ShowsTexturesVertexColoursLinesAndPoints) {
    Squares squares;
    squares.add(at(0, 0, 0), {1, 1, 1, 1}).texture = Texture{0, false, false};
    Image image;
    image.bytes = encodePng({1, 2, 3, {255, 0, 0, 0, 0, 255}}); // Red over blue.
    image.width = 1;
    image.height = 2;
    squares.model.images = {image};
    const Pixels textured = drawn(squares.model, options("front"));
    EXPECT_THAT(pixel(textured, 0.5, 0.15), IsAbout(Rgba{255, 0, 0, 255}));
    EXPECT_THAT(pixel(textured, 0.5, 0.85), IsAbout(Rgba{0, 0, 255, 255}));

    squares.model.materials[0].texture.reset();
    squares.model.geometries[0].normals.clear(); // A face without normals is flat.
    squares.model.geometries[0].colors.assign(4, {0, 1, 0, 1});
    EXPECT_THAT(pixel(drawn(squares.model, options("front")), 0.5, 0.5),
                IsAbout(Rgba{0, 255, 0, 255}));

    squares.model.geometries[0].topology = Topology::kLines;
    EXPECT_NEAR(coverage(drawn(squares.model, options("front"))), 0.03, 0.02);
    squares.model.geometries[0].topology = Topology::kPoints;
    EXPECT_NEAR(coverage(drawn(squares.model, options("front"))), 4 * 9 / 1e4, 0.003);
}

TEST(Picture, HasNoSeamsBetweenTiles) {
    Squares squares;
    squares.add(at(0, 0, 0), kRed);
    const Pixels picture = drawn(squares.model, options("front", 2500));
    EXPECT_NEAR(coverage(picture), 1 / (1.05 * 1.05), 0.002);
    for (const double place : {0.03, 0.5, 2047.5 / 2500, 2048.5 / 2500, 0.97}) {
        EXPECT_THAT(pixel(picture, place, 0.5), IsAbout(Rgba{255, 0, 0, 255})) << place;
        EXPECT_THAT(pixel(picture, 0.5, place), IsAbout(Rgba{255, 0, 0, 255})) << place;
    }
    EXPECT_EQ(pixel(picture, 0.01, 0.01), kWhite);
}

} // namespace
