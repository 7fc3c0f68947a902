#include "convert/converter.h"

#include "compat/geom/settings.h"
#include "traverse/state.h"
#include "vrml/diagnostics.h"
#include "vrml/nodes.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <bit>
#include <cstdio>

namespace meshcast {

namespace {

void forward(void* diagnostics, GEOMmessage kind, const char* text) {
    const bool isFinding = kind == GEOMmessage::finding;
    static_cast<CountedDiagnostics*>(diagnostics)
        ->report({isFinding ? DiagnosticKind::kCheckFinding : DiagnosticKind::kGeomError, 0, text});
}

// ---- What the records of a shape depend on, besides the options

constexpr std::uint64_t kCone = 1, kCube = 2, kCylinder = 3, kSphere = 4; // No address is so low.

std::uint64_t bits(float value) { return std::bit_cast<std::uint32_t>(value); }
std::uint64_t bits(float first, float second) { return bits(first) << 32U | bits(second); }
std::uint64_t bits(const void* node) { return reinterpret_cast<std::uintptr_t>(node); }

RecordCache::Key keyOf(const QvCone& shape, const QvState& /*state*/) {
    return {kCone, bits(shape.bottomRadius.value, shape.height.value)};
}

RecordCache::Key keyOf(const QvCube& shape, const QvState& /*state*/) {
    return {kCube, bits(shape.width.value, shape.height.value), bits(shape.depth.value)};
}

RecordCache::Key keyOf(const QvCylinder& shape, const QvState& /*state*/) {
    return {kCylinder, bits(shape.radius.value, shape.height.value)};
}

RecordCache::Key keyOf(const QvSphere& shape, const QvState& /*state*/) {
    return {kSphere, bits(shape.radius.value)};
}

/// Of all other shapes: the node, and those of the properties that it is converted with.
RecordCache::Key keyOf(const QvNode& shape, const QvState& state) {
    return {bits(&shape),           bits(state.coordinate3()),
            bits(state.normal()),   bits(state.normalBinding()),
            bits(state.material()), bits(state.materialBinding())};
}

} // namespace

std::size_t ObjectSink::writeAndCopy(const GEOMobj& object, std::span<unsigned char> /*room*/) {
    write(object);
    return 0;
}

void ObjectSink::writeCopy(std::span<const unsigned char> /*record*/) {}

std::size_t DescriptorSink::writeAndCopy(const GEOMobj& object, std::span<unsigned char> room) {
    return GEOMwrite_obj_and_copy(&object, descriptor_, room.data());
}

void DescriptorSink::writeCopy(std::span<const unsigned char> record) {
    GEOMwrite_copy(record.data(), record.size(), descriptor_);
}

void DescriptorSink::write(const GEOMobj& object) { GEOMwrite_obj(&object, descriptor_, 0); }

void DescriptorSink::print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

Converter::Converter(ObjectSink& sink, CountedDiagnostics& diagnostics,
                     const ConvertOptions& options)
    : sink_(sink), diagnostics_(diagnostics), options_(options), textures_(options.textures),
      mayRepeat_(!options.textures && !options.verify && !geom::traceWanted()) {}

template <class Shape>
void Converter::convertOrRepeat(const Shape& shape, const QvState& state) {
    if (!mayRepeat_) {
        convert(shape, state);
        return;
    }
    const RecordCache::Key key = keyOf(shape, state);
    const RecordCache::Entry entry = cache_.find(key);
    if (entry.isKept) {
        std::span<const unsigned char> rest = entry.records;
        while (!rest.empty()) {
            sink_.writeCopy(ShapeRecords::next(rest));
        }
        return;
    }
    const std::uint64_t messages = diagnostics_.count();
    records_.clear();
    isKeeping_ = entry.hasComeBefore;
    convert(shape, state);
    // A shape that has said something says it again each time.
    if (isKeeping_ && records_.isComplete() && diagnostics_.count() == messages) {
        cache_.keep(key, records_.bytes());
    }
    isKeeping_ = false;
}

void Converter::visit(const QvCone& shape, const QvState& state) { convertOrRepeat(shape, state); }
void Converter::visit(const QvCube& shape, const QvState& state) { convertOrRepeat(shape, state); }
void Converter::visit(const QvCylinder& shape, const QvState& state) {
    convertOrRepeat(shape, state);
}
void Converter::visit(const QvIndexedFaceSet& shape, const QvState& state) {
    convertOrRepeat(shape, state);
}
void Converter::visit(const QvIndexedLineSet& shape, const QvState& state) {
    convertOrRepeat(shape, state);
}
void Converter::visit(const QvPointSet& shape, const QvState& state) {
    convertOrRepeat(shape, state);
}
void Converter::visit(const QvSphere& shape, const QvState& state) {
    convertOrRepeat(shape, state);
}

void Converter::write(const GEOMobj& object) {
    const std::span<unsigned char> room =
        isKeeping_ && records_.isComplete() ? records_.room() : std::span<unsigned char>();
    if (room.empty()) {
        records_.add(0);
        sink_.write(object);
    } else {
        records_.add(sink_.writeAndCopy(object, room));
    }
}

void Converter::writePolyhedron(std::span<const float> vertices,
                                std::span<const std::int32_t> polygons, Normals normals,
                                std::span<const float> uvs) {
    const ObjectOwner object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
    GEOMadd_vertices(object.get(), vertices.data(), static_cast<std::int64_t>(vertices.size() / 3),
                     GEOM_COPY);
    GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
    if (normals != Normals::kNone) {
        GEOMgen_normals(object.get(), normals == Normals::kFacet ? 1 : 0);
    }
    if (!uvs.empty()) {
        GEOMadd_uvs(object.get(), uvs.data(), static_cast<std::int64_t>(uvs.size() / 2), GEOM_COPY);
    }
    write(*object);
}

void Converter::reportBadIndex(const char* shape, std::int32_t index) {
    report(diagnostics_, DiagnosticKind::kShapeError, 0, "%s: Out of Index: %d", shape, index);
}

void convertScene(const Scene& scene, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options) {
    if (scene.root == nullptr) {
        return;
    }
    CountedDiagnostics counted(diagnostics);
    const GEOMscope settings({options.version, options.verify, forward, &counted});
    Converter converter(sink, counted, options);
    QvState state(converter, counted);
    scene.root->traverse(state);
}

bool convertScene(ByteSource& source, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options) {
    Scene scene;
    const bool isRead = readScene(scene, source, diagnostics);
    convertScene(scene, sink, diagnostics, options);
    return isRead;
}

} // namespace meshcast
