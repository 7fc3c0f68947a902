// A baseline for the speed of meshcast, called the floor: it converts only the scenes of scene_gen,
// to the same bytes, and does as little as possible. It reads in blocks, converts short decimals
// with its own code and other numbers with std::from_chars, keeps plain arrays, swaps bytes in bulk
// and writes in large pieces. It knows only the words that scene_gen writes, builds no tree and
// checks nothing. The ratio to it shows what meshcast's generality costs.

#include "bench/floor_io.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using bench::Input;
using bench::Output;

constexpr std::uint32_t kPolyhedron = 2;
constexpr std::uint32_t kSphere = 4;
constexpr std::uint32_t kHasNormals = 0x1;
constexpr std::uint32_t kHasColours = 0x2;

void putHeader(Output& out, std::uint32_t type, std::uint32_t flags, std::uint32_t hasExtent,
               std::int64_t byteCount) {
    out.put(0x474D3634U);
    out.put(0U);
    out.put(flags);
    out.put(type);
    out.put(std::array<float, 6>{});
    out.put(hasExtent);
    out.put(byteCount);
    out.put(std::array<float, 3>{}); // no properties, two empty strings
}

// ---- Polyhedra

/// Faces as in a scene: indices from 0, with -1 after each face.
using Faces = std::vector<int>;

/// Whether faces share points, or every corner has its own point.
enum class Corners { Shared, Own };

void putPolyhedron(Output& out, const Faces& faces, Corners corners, std::span<const float> points,
                   std::span<const float> normals, std::span<const float> colours) {
    const std::int64_t faceCount = std::count(faces.begin(), faces.end(), -1);
    const std::int64_t cornerCount = std::ssize(faces) - faceCount;
    putHeader(out, kPolyhedron, kHasNormals | (colours.empty() ? 0 : kHasColours), 0,
              4 * (cornerCount + faceCount + std::ssize(points) + std::ssize(normals) +
                   std::ssize(colours)) +
                  4);
    out.put(faceCount);
    out.put(cornerCount);
    out.put(std::ssize(points) / 3);
    std::int64_t ownCorner = 0;
    for (std::size_t begin = 0; begin < faces.size();) {
        std::size_t end = begin;
        while (faces[end] >= 0) {
            ++end;
        }
        out.put(static_cast<std::int64_t>(end - begin));
        for (; begin < end; ++begin) {
            out.put(corners == Corners::Own ? ++ownCorner : std::int64_t{faces[begin]} + 1);
        }
        ++begin;
    }
    out.put(std::int64_t{0});
    out.put(points);
    out.put(normals);
    out.put(colours);
}

struct Vector {
    float x, y, z;
};

Vector pointAt(std::span<const float> points, int index) {
    const float* const p = &points[3 * static_cast<std::size_t>(index)];
    return {p[0], p[1], p[2]};
}

Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

// Not inlined: GCC 12 vectorises two calls in a row and does not round to float in between.
[[gnu::noinline]] Vector normalised(Vector v) {
    const float square = v.x * v.x + v.y * v.y + v.z * v.z;
    const double length = std::sqrt(static_cast<double>(square));
    if (length <= 1e-24) {
        return {0, 0, 0};
    }
    return {static_cast<float>(v.x / length), static_cast<float>(v.y / length),
            static_cast<float>(v.z / length)};
}

/// The normal of a face: the sum of the cross products at consecutive corners, at length 1.
Vector faceNormal(std::span<const float> points, std::span<const int> face) {
    Vector sum{0, 0, 0};
    for (std::size_t j = 0; j + 2 < face.size(); ++j) {
        const Vector origin = pointAt(points, face[j]);
        const Vector a = pointAt(points, face[j + 1]) - origin;
        const Vector b = pointAt(points, face[j + 2]) - origin;
        sum.x += a.y * b.z - a.z * b.y;
        sum.y += a.z * b.x - a.x * b.z;
        sum.z += a.x * b.y - a.y * b.x;
    }
    constexpr double tolerance = 1e-15;
    const auto vanishes = [](float c) { return -tolerance < c && c < tolerance; };
    return vanishes(sum.x) && vanishes(sum.y) && vanishes(sum.z) ? Vector{0, 0, 0}
                                                                 : normalised(sum);
}

template <typename UseFace>
void forEachFace(const Faces& faces, UseFace useFace) {
    for (auto begin = faces.begin(); begin != faces.end();) {
        auto end = begin;
        while (*end >= 0) {
            ++end;
        }
        useFace(std::span<const int>(begin, end));
        begin = end + 1;
    }
}

void putSmooth(Output& out, const Faces& faces, std::span<const float> points,
               std::span<const float> colours) {
    static std::vector<float> normals;
    normals.assign(points.size(), 0);
    forEachFace(faces, [&](std::span<const int> face) {
        const Vector normal = faceNormal(points, face);
        for (const int corner : face) {
            float* const sum = &normals[3 * static_cast<std::size_t>(corner)];
            sum[0] += normal.x;
            sum[1] += normal.y;
            sum[2] += normal.z;
        }
    });
    for (std::size_t i = 0; i < normals.size(); i += 3) {
        // Twice, as the library does: the second pass may change the last bit.
        const Vector normal = normalised(normalised({normals[i], normals[i + 1], normals[i + 2]}));
        normals[i] = normal.x;
        normals[i + 1] = normal.y;
        normals[i + 2] = normal.z;
    }
    putPolyhedron(out, faces, Corners::Shared, points, normals, colours);
}

void putFlat(Output& out, const Faces& faces, std::span<const float> points) {
    static std::vector<float> corners;
    static std::vector<float> normals;
    corners.clear();
    normals.clear();
    forEachFace(faces, [&](std::span<const int> face) {
        const Vector normal = normalised(faceNormal(points, face));
        for (const int index : face) {
            const Vector corner = pointAt(points, index);
            corners.insert(corners.end(), {corner.x, corner.y, corner.z});
            normals.insert(normals.end(), {normal.x, normal.y, normal.z});
        }
    });
    putPolyhedron(out, faces, Corners::Own, corners, normals, {});
}

// ---- Primitives

enum class Primitive { None, Cube, Cone, Cylinder, Sphere };

struct Solid {
    Primitive kind = Primitive::None;
    float width = 0; // the radius of cones, cylinders and spheres
    float height = 0;
    float depth = 0;
};

float half(float v) { return static_cast<float>(static_cast<double>(v) * 0.5); }

class Solids {
public:
    Solids() {
        constexpr int n = static_cast<int>(kSegments);
        for (int i = 0; i < n; ++i) {
            const double angle = i * 6.283185305179586 / 12.0;
            circle_[static_cast<std::size_t>(i)] = {static_cast<float>(std::cos(angle)), 0,
                                                    static_cast<float>(std::sin(angle))};
            const int here = 1 + i;
            const int beside = 1 + (i + 1) % n;
            bottom_.insert(bottom_.end(), {0, here, beside, -1});
            coneSide_.insert(coneSide_.end(), {13, beside, here, -1});
            top_.insert(top_.end(), {25, beside + n, here + n, -1});
            side_.insert(side_.end(), {here, here + n, beside + n, beside, -1});
        }
    }

    void put(Output& out, const Solid& solid) {
        const float y = half(solid.height);
        points_.clear();
        switch (solid.kind) {
        case Primitive::Cube:
            for (const Vector& corner : kCorners) {
                add(half(corner.x * solid.width), half(corner.y * solid.height),
                    half(corner.z * solid.depth));
            }
            putFlat(out, kCubeFaces, points_);
            break;
        case Primitive::Cone:
            add(0, -y, 0);
            addCircle(solid.width, -y);
            add(0, y, 0);
            putFlat(out, bottom_, points_);
            putSmooth(out, coneSide_, points_, {});
            break;
        case Primitive::Cylinder:
            add(0, -y, 0);
            addCircle(solid.width, -y);
            addCircle(solid.width, y);
            add(0, y, 0);
            putFlat(out, bottom_, points_);
            putSmooth(out, side_, points_, {});
            putFlat(out, top_, points_);
            break;
        default:
            putHeader(out, kSphere, 0, 1, 4);
            out.put(std::int64_t{1});
            out.put(std::array{0.0F, 0.0F, 0.0F, solid.width});
        }
    }

private:
    static constexpr std::size_t kSegments = 12;
    static constexpr std::array<Vector, 8> kCorners{{{-1, -1, 1},
                                                     {1, -1, 1},
                                                     {1, -1, -1},
                                                     {-1, -1, -1},
                                                     {-1, 1, 1},
                                                     {1, 1, 1},
                                                     {1, 1, -1},
                                                     {-1, 1, -1}}};
    const Faces kCubeFaces{0, 1, 5, 4, -1, 2, 3, 7, 6, -1, 0, 4, 7, 3, -1,
                           1, 2, 6, 5, -1, 1, 0, 3, 2, -1, 4, 5, 6, 7, -1};

    void add(float x, float y, float z) { points_.insert(points_.end(), {x, y, z}); }

    void addCircle(float radius, float y) {
        for (const Vector& at : circle_) {
            add(radius * at.x, y, radius * at.z);
        }
    }

    std::array<Vector, kSegments> circle_;
    Faces bottom_, side_, top_, coneSide_;
    std::vector<float> points_;
};

// ---- Face sets

struct FaceSet {
    std::vector<float> points, colours, normals;
    std::vector<int> coordIndex, materialIndex, normalIndex;
    bool colourByCorner = false;
    bool givenNormals = false;
};

/// A colour component after conversion to a byte and back.
float throughByte(float component) {
    const auto byte = static_cast<unsigned char>(std::min<double>(component, 1.0) * 255.0);
    return static_cast<float>(byte / 255.0);
}

/// Copies `list[choice]` to `values[index]`, 3 floats.
void spread(std::vector<float>& values, int index, const std::vector<float>& list, int choice) {
    std::memcpy(&values[3 * static_cast<std::size_t>(index)],
                &list[3 * static_cast<std::size_t>(choice)], 3 * sizeof(float));
}

void putFaceSet(Output& out, FaceSet& set) {
    static std::vector<float> colours;
    static std::vector<float> normals;
    colours.clear();
    if (set.colours.size() > 3) {
        std::transform(set.colours.begin(), set.colours.end(), set.colours.begin(), throughByte);
        colours.assign(set.points.size(), 0);
        std::size_t face = 0;
        for (std::size_t j = 0; j < set.coordIndex.size(); ++j) {
            if (set.coordIndex[j] < 0) {
                ++face;
            } else {
                spread(colours, set.coordIndex[j], set.colours,
                       set.materialIndex[set.colourByCorner ? j : face]);
            }
        }
    }
    if (set.givenNormals) {
        normals.assign(set.points.size(), 0);
        for (std::size_t j = 0; j < set.normalIndex.size(); ++j) {
            if (set.normalIndex[j] >= 0) {
                spread(normals, set.coordIndex[j], set.normals, set.normalIndex[j]);
            }
        }
        putPolyhedron(out, set.coordIndex, Corners::Shared, set.points, normals, colours);
    } else {
        putSmooth(out, set.coordIndex, set.points, colours);
    }
}

// ---- The scene

class Scene {
public:
    void convert() {
        for (std::string_view word = in_.word(); !word.empty(); word = in_.word()) {
            take(word);
        }
    }

private:
    void take(std::string_view word) {
        if (word == "}") {
            close();
        } else if (word == "Separator") {
            set_.givenNormals = false;
        } else if (word == "point") {
            in_.numbers<float, double>(set_.points);
        } else if (word == "coordIndex") {
            in_.numbers(set_.coordIndex);
            isFaceSet_ = true;
        } else if (word == "diffuseColor") {
            in_.numbers<float, double>(set_.colours);
        } else if (word == "materialIndex") {
            in_.numbers(set_.materialIndex);
        } else if (word == "vector") {
            in_.numbers<float, double>(set_.normals);
            set_.givenNormals = true;
        } else if (word == "normalIndex") {
            in_.numbers(set_.normalIndex);
        } else if (word == "MaterialBinding") {
            in_.word();
            set_.colourByCorner = in_.word() == "PER_VERTEX_INDEXED";
        } else if (word == "Cube") {
            solid_.kind = Primitive::Cube;
        } else if (word == "Cone") {
            solid_.kind = Primitive::Cone;
        } else if (word == "Cylinder") {
            solid_.kind = Primitive::Cylinder;
        } else if (word == "Sphere") {
            solid_.kind = Primitive::Sphere;
        } else if (word == "width" || word == "radius" || word == "bottomRadius") {
            solid_.width = real();
        } else if (word == "height") {
            solid_.height = real();
        } else if (word == "depth") {
            solid_.depth = real();
        } else if (word == "DEF") {
            name_ = nameNumber();
        } else if (word == "USE") {
            solids_.put(out_, stock_[nameNumber()]);
        }
    }

    /// Ends a node, and writes its shape if it is one.
    void close() {
        if (solid_.kind != Primitive::None) {
            if (name_) {
                stock_.resize(std::max(stock_.size(), *name_ + 1));
                stock_[*name_] = solid_;
                name_.reset();
            }
            solids_.put(out_, solid_);
            solid_.kind = Primitive::None;
        } else if (isFaceSet_) {
            putFaceSet(out_, set_);
            isFaceSet_ = false;
        }
    }

    float real() {
        in_.numbers<float, double>(values_);
        return values_.front();
    }

    /// The number in a name such as Stock_12.
    std::size_t nameNumber() {
        const std::string_view name = in_.word();
        const char* const digits = name.data() + name.find('_') + 1;
        std::size_t number = 0;
        std::from_chars(digits, name.data() + name.size(), number);
        return number;
    }

    Input in_;
    Output out_;
    Solids solids_;
    Solid solid_;
    std::vector<Solid> stock_;
    std::optional<std::size_t> name_;
    FaceSet set_;
    bool isFaceSet_ = false;
    std::vector<float> values_;
};

} // namespace

int main() {
    Scene scene;
    scene.convert();
    return 0;
}
