// Google Benchmark suite of the libraries: tokens, fields, whole scenes, normals, writers. Bytes
// per second count the text that is read or the records that are written.

#include "bench/scenes.h"
#include "compat/geom/geom.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/fields.h"
#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using namespace meshcast;

/// A header line, `opening`, and then `piece` repeated to about 1 MB.
std::string repeated(std::string_view piece, std::string_view opening = "") {
    std::string text("#VRML V1.0 ascii\n");
    text += opening;
    while (text.size() < 1'000'000) {
        text += piece;
    }
    return text;
}

void countBytes(benchmark::State& state, std::size_t bytesEachTime) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesEachTime));
}

// ---- Tokens

/// Reads a text with a token reader until it fails at the end.
template <typename ReadToken>
void readTokens(benchmark::State& state, std::string_view piece, ReadToken readToken) {
    const std::string text = repeated(piece);
    for ([[maybe_unused]] const auto _ : state) {
        Scene scene;
        MemorySource source(text);
        StandardErrorDiagnostics messages;
        VrmlInput input(scene, source, messages);
        while (readToken(input)) {
        }
    }
    countBytes(state, text.size());
}

void skipWhiteSpace(benchmark::State& state) {
    readTokens(state, "        # a comment of the usual length\n\t\t;\n", [](VrmlInput& input) {
        char c = 0;
        return input.skipWhiteSpace() && input.get(c);
    });
}
BENCHMARK(skipWhiteSpace);

void readNames(benchmark::State& state) {
    readTokens(state, "Separator Material\ndiffuseColor Coordinate3 point ", [](VrmlInput& input) {
        InternedName name;
        return input.readName(name) && !name.empty();
    });
}
BENCHMARK(readNames);

void readStrings(benchmark::State& state) {
    readTokens(state, "\"http://harbour.example/lighthouse.html\" plain \"a \\\" inside\"\n",
               [](VrmlInput& input) {
                   std::string string;
                   return input.readString(string) && !string.empty();
               });
}
BENCHMARK(readStrings);

void readIntegers(benchmark::State& state) {
    readTokens(state, "0 17 1044 -1\n123456 0x1F 010 ", [](VrmlInput& input) {
        std::int32_t value = 0;
        return input.readInteger(value);
    });
}
BENCHMARK(readIntegers);

void readReals(benchmark::State& state) {
    readTokens(state, "0 12.731 -0.5\n1.5E-03 2531.007 ", [](VrmlInput& input) {
        double value = 0;
        return input.skipWhiteSpace() && input.readReal(value);
    });
}
BENCHMARK(readReals);

// ---- Fields

/// Reads a field of a type, one list of about 1 MB.
void readList(benchmark::State& state, FieldType type, std::string_view value) {
    const std::string text = repeated(value, "[") + "]";
    for ([[maybe_unused]] const auto _ : state) {
        Scene scene;
        MemorySource source(text);
        StandardErrorDiagnostics messages;
        VrmlInput input(scene, source, messages);
        const OwnedField field = createField(type);
        if (!readField(input, *field, scene.intern("list"))) {
            state.SkipWithError("the list cannot be read");
            return;
        }
    }
    countBytes(state, text.size());
}
BENCHMARK_CAPTURE(readList, points, FieldType::kMFVec3f, "\n        12.731 -0.5 2531.007,");
BENCHMARK_CAPTURE(readList, colours, FieldType::kMFColor, "\n        0.8 0.25 1,");
BENCHMARK_CAPTURE(readList, indices, FieldType::kMFLong, "\n        1044, 1045, 2089, 2088, -1,");

// ---- Whole scenes

void readWholeScene(benchmark::State& state, std::string_view kind) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const memory = open_memstream(&text, &size);
    bench::writeScene(kind, 4'000'000, 1, memory);
    (void)std::fclose(memory);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    for ([[maybe_unused]] const auto _ : state) {
        Scene scene;
        MemorySource source(std::string_view(text, size));
        StandardErrorDiagnostics messages;
        if (!readScene(scene, source, messages) || scene.root == nullptr) {
            state.SkipWithError("the scene cannot be read");
            return;
        }
    }
    countBytes(state, size);
}
BENCHMARK_CAPTURE(readWholeScene, terrain, "terrain")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readWholeScene, parts, "parts")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readWholeScene, primitives, "primitives")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readWholeScene, coloured, "coloured")->Unit(benchmark::kMillisecond);

// ---- Objects

using Object = std::unique_ptr<GEOMobj, decltype(&GEOMdestroy_obj)>;

constexpr int kGridSide = 200;
constexpr int kGridPoints = kGridSide * kGridSide;

/// The points of a square grid, saddle-shaped.
std::vector<float> gridPoints() {
    std::vector<float> points;
    for (int row = 0; row < kGridSide; ++row) {
        for (int column = 0; column < kGridSide; ++column) {
            const auto x = static_cast<float>(column) / kGridSide;
            const auto z = static_cast<float>(row) / kGridSide;
            points.insert(points.end(), {x, x * x - z * z, z});
        }
    }
    return points;
}

/// The grid's quadrilaterals, as GEOMadd_polygons takes them.
std::vector<std::int32_t> gridPolygons() {
    std::vector<std::int32_t> polygons;
    for (int row = 0; row + 1 < kGridSide; ++row) {
        for (int column = 1; column < kGridSide; ++column) {
            const std::int32_t corner = row * kGridSide + column;
            polygons.insert(polygons.end(),
                            {4, corner, corner + kGridSide, corner + kGridSide + 1, corner + 1});
        }
    }
    polygons.push_back(0);
    return polygons;
}

Object makePolyhedron() {
    static const std::vector<float> points = gridPoints();
    static const std::vector<std::int32_t> polygons = gridPolygons();
    Object object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr), &GEOMdestroy_obj);
    GEOMadd_vertices(object.get(), points.data(), kGridPoints, GEOM_COPY);
    GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
    return object;
}

Object makeMesh() {
    static const std::vector<float> points = gridPoints();
    return {GEOMcreate_mesh(nullptr, points.data(), kGridSide, kGridSide, GEOM_COPY),
            &GEOMdestroy_obj};
}

Object makePolytriangle() {
    static const std::vector<float> points = gridPoints();
    Object object(GEOMcreate_obj(GEOM_POLYTRIANGLE, nullptr), &GEOMdestroy_obj);
    for (std::size_t row = 0; row < kGridSide; ++row) {
        GEOMadd_polyline(object.get(), &points[3 * row * kGridSide], nullptr, kGridSide, GEOM_COPY);
    }
    return object;
}

Object makeSpheres() {
    static const std::vector<float> points = gridPoints();
    static const std::vector<float> radii(kGridPoints, 0.01F);
    return {GEOMcreate_sphere(nullptr, points.data(), radii.data(), nullptr, nullptr, kGridPoints,
                              GEOM_COPY),
            &GEOMdestroy_obj};
}

Object makeLabels() {
    static const std::vector<float> points = gridPoints();
    Object object(GEOMcreate_label(nullptr, 0), &GEOMdestroy_obj);
    for (std::size_t i = 0; i < kGridPoints; i += 10) {
        GEOMadd_label(object.get(), "a label of some length", &points[3 * i], &points[3 * i], 0.15F,
                      nullptr, -1);
    }
    return object;
}

// ---- Normals

void generateNormals(benchmark::State& state, Object (*make)(), int mode) {
    for ([[maybe_unused]] const auto _ : state) {
        state.PauseTiming();
        const Object object = make();
        state.ResumeTiming();
        GEOMgen_normals(object.get(), mode);
    }
    state.SetItemsProcessed(state.iterations() * kGridPoints);
}
BENCHMARK_CAPTURE(generateNormals, smooth, makePolyhedron, 0);
BENCHMARK_CAPTURE(generateNormals, facet, makePolyhedron, 1);
BENCHMARK_CAPTURE(generateNormals, mesh, makeMesh, 0);

// ---- Writers

/// The size of an object's record, measured with a temporary file.
std::size_t recordSize(const GEOMobj* object) {
    const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::tmpfile(), &std::fclose);
    if (!file) {
        return 0;
    }
    GEOMwrite_obj(object, fileno(file.get()), 0);
    return static_cast<std::size_t>(lseek(fileno(file.get()), 0, SEEK_END));
}

void writeRecord(benchmark::State& state, Object (*make)(), bool withNormals) {
    const Object object = make();
    if (withNormals) {
        GEOMgen_normals(object.get(), 0);
    }
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    for ([[maybe_unused]] const auto _ : state) {
        GEOMwrite_obj(object.get(), nowhere, 0);
    }
    close(nowhere);
    countBytes(state, recordSize(object.get()));
}
BENCHMARK_CAPTURE(writeRecord, polyhedron, makePolyhedron, true);
BENCHMARK_CAPTURE(writeRecord, mesh, makeMesh, true);
BENCHMARK_CAPTURE(writeRecord, polytriangle, makePolytriangle, false);
BENCHMARK_CAPTURE(writeRecord, spheres, makeSpheres, false);
BENCHMARK_CAPTURE(writeRecord, labels, makeLabels, false);

} // namespace
