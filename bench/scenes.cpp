// The same arguments give the same bytes on every machine: this file has its own random numbers and
// its own sine, since the last bit of the library's sine differs between machines, and coordinates
// are integers (thousandths) until they are printed.

#include "bench/scenes.h"

#include "bench/scene_writer.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

using bench::Point;
using bench::SceneResult;
using bench::SceneWriter;
using bench::Thousandths;

/// SplitMix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number generators", 2014).
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// A number from `low` to `high`, both included.
    int between(int low, int high) {
        const auto span = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<int>((next() >> 32U) * span >> 32U);
    }

private:
    std::uint64_t state_;
};

/// The sine of an angle given in turns, by its Taylor series over a quarter turn: exact to about
/// nine decimals, of which three are printed.
double sineOfTurns(double turns) {
    const double within = turns - std::floor(turns);
    const double half = within < 0.5 ? within : within - 0.5;
    const double quarter = half < 0.25 ? half : 0.5 - half;
    const double angle = quarter * 2 * std::numbers::pi;
    const double square = angle * angle;
    double sum = 1;
    for (int k = 12; k > 0; k -= 2) {
        sum = 1 - sum * square / (k * (k + 1));
    }
    return within < 0.5 ? angle * sum : -angle * sum;
}

double cosineOfTurns(double turns) { return sineOfTurns(turns + 0.25); }

Thousandths rounded(double thousandths) {
    return static_cast<Thousandths>(std::floor(thousandths + 0.5));
}

/// A place on a square of 180 units.
Point somewhere(Random& random) {
    return {random.between(-90000, 90000), random.between(0, 9000), random.between(-90000, 90000)};
}

void writeColour(SceneWriter& scene, Random& random) {
    scene.field("diffuseColor",
                {random.between(0, 1000), random.between(0, 1000), random.between(0, 1000)});
}

/// The quadrilaterals of a grid of `columns` by `rows` points, one per line.
void writeGridFaces(SceneWriter& scene, int columns, int rows) {
    scene.openList("coordIndex");
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column + 1 < columns; ++column) {
            const int corner = row * columns + column;
            scene.faceValue(std::array{corner, corner + columns, corner + columns + 1, corner + 1});
        }
    }
    scene.closeList();
}

/// A landscape: hills with a random phase, and noise of a few centimetres.
class Landscape {
public:
    explicit Landscape(Random& random) {
        for (double& phase : phases_) {
            phase = random.between(0, 999) / 1000.0;
        }
    }

    /// The height at a place given in grid steps.
    Thousandths height(int column, int row, Random& random) const {
        double sum = 0;
        double frequency = 1.0 / 180;
        double amplitude = 42000;
        for (std::size_t octave = 0; octave < kOctaves; ++octave) {
            sum += amplitude * sineOfTurns(column * frequency + phases_[2 * octave]) *
                   sineOfTurns(row * frequency + phases_[2 * octave + 1]);
            frequency *= 2.6;
            amplitude *= 0.4;
        }
        return rounded(sum) + random.between(-60, 60);
    }

private:
    static constexpr std::size_t kOctaves = 4;
    std::array<double, 2 * kOctaves> phases_;
};

/// The side of the square grid whose points and faces take about `bytes` when printed.
int gridSideFor(std::size_t bytes) {
    // The average number of digits of the integers up to `limit`.
    const auto digits = [](double limit) {
        double sum = 0;
        for (std::int64_t power = 1; static_cast<double>(power) <= limit; power *= 10) {
            sum += 1 - static_cast<double>(power) / (limit + 1);
        }
        return sum;
    };
    constexpr double indent = 6;
    constexpr double decimals = 3.9;
    constexpr double height = 6.3;
    int side = 2;
    for (double size = 0; size < static_cast<double>(bytes); ++side) {
        const double points = static_cast<double>(side) * side;
        const double pointLine = indent + 2 * (digits(side * 2.5) + decimals) + height + 4;
        const double faceLine = indent + 4 * (digits(points) + 2) + 4;
        size = points * (pointLine + faceLine);
    }
    return side;
}

/// One large height field.
void writeTerrain(SceneWriter& scene, std::size_t bytes, Random& random) {
    const Landscape landscape(random);
    const int side = gridSideFor(bytes);
    scene.open("Separator");
    scene.open("ShapeHints");
    scene.line("vertexOrdering COUNTERCLOCKWISE");
    scene.line("faceType CONVEX");
    scene.close();
    scene.open("Coordinate3");
    scene.openList("point");
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            scene.pointValue({Thousandths(column) * 2500 + random.between(-400, 400),
                              landscape.height(column, row, random),
                              Thousandths(row) * 2500 + random.between(-400, 400)});
        }
    }
    scene.closeList();
    scene.close();
    scene.open("IndexedFaceSet");
    writeGridFaces(scene, side, side);
    scene.close();
    scene.close();
}

/// A turned part: `rings` circles of `sides` points about the y axis, closed by a cap at each end.
void writeTurnedPart(SceneWriter& scene, int sides, int rings, Random& random) {
    const Point centre = somewhere(random);
    std::vector<Point> points;
    for (int ring = 0; ring < rings; ++ring) {
        const int radius = random.between(200, 3000);
        for (int side = 0; side < sides; ++side) {
            const double turns = static_cast<double>(side) / sides;
            points.push_back({centre.x + rounded(radius * cosineOfTurns(turns)),
                              centre.y + Thousandths(ring) * 750,
                              centre.z - rounded(radius * sineOfTurns(turns))});
        }
    }
    scene.open("Coordinate3");
    scene.pointList("point", points);
    scene.close();
    scene.open("IndexedFaceSet");
    scene.openList("coordIndex");
    std::vector<int> cap(static_cast<std::size_t>(sides));
    for (int side = 0; side < sides; ++side) {
        cap[static_cast<std::size_t>(side)] = sides - 1 - side;
    }
    scene.faceValue(cap);
    for (int ring = 0; ring + 1 < rings; ++ring) {
        for (int side = 0; side < sides; ++side) {
            const int here = ring * sides + side;
            const int beside = ring * sides + (side + 1) % sides;
            scene.faceValue(std::array{here, beside, beside + sides, here + sides});
        }
    }
    for (int side = 0; side < sides; ++side) {
        cap[static_cast<std::size_t>(side)] = (rings - 1) * sides + side;
    }
    scene.faceValue(cap);
    scene.closeList();
    scene.close();
}

/// Many small parts, every third of them with a name.
void writeParts(SceneWriter& scene, std::size_t bytes, Random& random) {
    scene.open("Separator");
    for (int part = 0; scene.written() < bytes; ++part) {
        if (part % 3 == 0) {
            scene.openNamed("Part", part, "Separator");
        } else {
            scene.open("Separator");
        }
        scene.open("Material");
        scene.line("ambientColor 0.1 0.1 0.1");
        writeColour(scene, random);
        scene.line("specularColor 0 0 0");
        scene.field("shininess", {random.between(0, 1000)});
        scene.line("transparency 0");
        scene.close();
        const int sides = random.between(4, 10);
        writeTurnedPart(scene, sides, random.between(2, 6), random);
        scene.close();
    }
    scene.close();
}

void writePrimitive(SceneWriter& scene, Random& random) {
    const auto size = [&random] { return random.between(50, 4000); };
    switch (random.between(0, 3)) {
    case 0:
        scene.open("Cube");
        scene.field("width", {size()});
        scene.field("height", {size()});
        scene.field("depth", {size()});
        break;
    case 1:
        scene.open("Cone");
        scene.field("bottomRadius", {size()});
        scene.field("height", {size()});
        break;
    case 2:
        scene.open("Cylinder");
        scene.field("radius", {size()});
        scene.field("height", {size()});
        break;
    default:
        scene.open("Sphere");
        scene.field("radius", {size()});
        break;
    }
    scene.close();
}

/// Named primitives, then placed shapes: half of them use a named primitive, the others have their
/// own.
void writePrimitives(SceneWriter& scene, std::size_t bytes, Random& random) {
    constexpr int stockSize = 512;
    scene.open("Separator");
    for (int item = 0; scene.written() < bytes; ++item) {
        if (item < stockSize) {
            scene.openNamed("Stock", item, "Separator");
            scene.open("Material");
            writeColour(scene, random);
            scene.close();
            writePrimitive(scene, random);
        } else {
            scene.open("Separator");
            scene.open("Transform");
            const Point place = somewhere(random);
            scene.field("translation", {place.x, place.y, place.z});
            scene.field("rotation", {0, 1000, 0, random.between(0, 6283)});
            scene.field("scaleFactor",
                        {random.between(100, 3000), 1000, random.between(100, 3000)});
            scene.close();
            if (random.between(0, 1) == 0) {
                scene.use("Stock", random.between(0, stockSize - 1));
            } else {
                writePrimitive(scene, random);
            }
        }
        scene.close();
    }
    scene.close();
}

constexpr int kPatchSide = 32;

/// The points of a curved patch: a square grid at a random position.
std::vector<Point> curvedPatch(Random& random) {
    const double bend = random.between(10, 90) / 1000.0;
    const Point corner = somewhere(random);
    std::vector<Point> points;
    for (int row = 0; row < kPatchSide; ++row) {
        for (int column = 0; column < kPatchSide; ++column) {
            const double turns = bend * (row + column) / 6;
            points.push_back({corner.x + Thousandths(column) * 120,
                              corner.y + rounded(900 * sineOfTurns(turns)),
                              corner.z + Thousandths(row) * 120});
        }
    }
    return points;
}

/// Directions of length 1 around the upper half of a sphere.
std::vector<Point> directions(int count, Random& random) {
    std::vector<Point> vectors;
    for (int i = 0; i < count; ++i) {
        const double around = random.between(0, 999) / 1000.0;
        const double up = random.between(0, 250) / 1000.0;
        vectors.push_back({rounded(1000 * cosineOfTurns(up) * cosineOfTurns(around)),
                           rounded(1000 * sineOfTurns(up)),
                           rounded(1000 * cosineOfTurns(up) * sineOfTurns(around))});
    }
    return vectors;
}

/// A random index below `count` for each corner of the faces of a patch.
void writeCornerChoices(SceneWriter& scene, std::string_view field, int count, Random& random) {
    constexpr int faces = (kPatchSide - 1) * (kPatchSide - 1);
    const auto choice = [&] { return random.between(0, count - 1); };
    scene.openList(field);
    for (int face = 0; face < faces; ++face) {
        scene.faceValue(std::array{choice(), choice(), choice(), choice()});
    }
    scene.closeList();
}

/// Meshes with lists of colours, alternately by corner and by face, with and without normals.
void writeColoured(SceneWriter& scene, std::size_t bytes, Random& random) {
    constexpr int colourCount = 64;
    constexpr int normalCount = 256;
    scene.open("Separator");
    for (int mesh = 0; scene.written() < bytes; ++mesh) {
        const bool colourByCorner = mesh % 2 == 0;
        const bool givenNormals = mesh % 4 < 2;
        scene.open("Separator");
        std::vector<Point> colours(colourCount);
        for (Point& colour : colours) {
            colour = {random.between(0, 1000), random.between(0, 1000), random.between(0, 1000)};
        }
        scene.open("Material");
        scene.pointList("diffuseColor", colours);
        scene.close();
        scene.open("MaterialBinding");
        scene.line(colourByCorner ? "value PER_VERTEX_INDEXED" : "value PER_FACE_INDEXED");
        scene.close();
        if (givenNormals) {
            scene.open("Normal");
            scene.pointList("vector", directions(normalCount, random));
            scene.close();
            scene.open("NormalBinding");
            scene.line("value PER_VERTEX_INDEXED");
            scene.close();
        }
        scene.open("Coordinate3");
        scene.pointList("point", curvedPatch(random));
        scene.close();
        scene.open("IndexedFaceSet");
        writeGridFaces(scene, kPatchSide, kPatchSide);
        if (colourByCorner) {
            writeCornerChoices(scene, "materialIndex", colourCount, random);
        } else {
            scene.openList("materialIndex");
            for (int face = 0; face < (kPatchSide - 1) * (kPatchSide - 1); ++face) {
                scene.indexValue(random.between(0, colourCount - 1));
            }
            scene.closeList();
        }
        if (givenNormals) {
            writeCornerChoices(scene, "normalIndex", normalCount, random);
        }
        scene.close();
        scene.close();
    }
    scene.close();
}

struct Kind {
    std::string_view name;
    void (*write)(SceneWriter& scene, std::size_t bytes, Random& random);
};

constexpr std::array kKinds = {
    Kind{"terrain", writeTerrain},
    Kind{"parts", writeParts},
    Kind{"primitives", writePrimitives},
    Kind{"coloured", writeColoured},
};

} // namespace

SceneResult bench::writeScene(std::string_view kind, std::size_t bytes, std::uint64_t seed,
                              std::FILE* to) {
    for (const Kind& known : kKinds) {
        if (known.name == kind) {
            SceneWriter scene(to);
            Random random(seed);
            known.write(scene, bytes, random);
            return scene.finish() ? SceneResult::Written : SceneResult::CannotWrite;
        }
    }
    return SceneResult::BadRequest;
}
