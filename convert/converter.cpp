#include "convert/converter.h"

#include "compat/geom/settings.h"
#include "traverse/state.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <cstdio>

namespace meshcast {

namespace {

void forward(void* diagnostics, GEOMmessage kind, const char* text) {
    const bool isFinding = kind == GEOMmessage::finding;
    static_cast<Diagnostics*>(diagnostics)
        ->report({isFinding ? DiagnosticKind::kCheckFinding : DiagnosticKind::kGeomError, 0, text});
}

} // namespace

void DescriptorSink::write(const GEOMobj& object) { GEOMwrite_obj(&object, descriptor_, 0); }

void DescriptorSink::print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
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
    sink_.write(*object);
}

void Converter::reportBadIndex(const char* shape, std::int32_t index) {
    report(diagnostics_, DiagnosticKind::kShapeError, 0, "%s: Out of Index: %d", shape, index);
}

void convertScene(const Scene& scene, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options) {
    if (scene.root == nullptr) {
        return;
    }
    const GEOMscope settings({options.version, options.verify, forward, &diagnostics});
    Converter converter(sink, diagnostics, options);
    QvState state(converter, diagnostics);
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
