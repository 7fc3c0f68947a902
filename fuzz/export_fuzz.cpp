#include "export/export.h"
#include "fuzz/evaluated_model.h"
#include "fuzz/finding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tiny_gltf.h>
#include <utility>

// Exports any bytes as a scene, loads the file with an independent implementation of the format,
// and compares the numbers of elements with the model.

using namespace meshcast;
using fuzz::check;

namespace {

class StringSink final : public exporter::ByteSink {
public:
    void write(std::string_view more) override { bytes.append(more); }

    std::string bytes;
};

/// Checks that every accessor is inside its buffer.
void checkAccessors(const tinygltf::Model& gltf) {
    for (const tinygltf::Accessor& accessor : gltf.accessors) {
        check(accessor.bufferView >= 0 && accessor.count > 0, "an accessor is empty");
        const auto& view = gltf.bufferViews.at(static_cast<std::size_t>(accessor.bufferView));
        const auto component =
            tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType));
        const auto components =
            tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
        const auto size = static_cast<std::size_t>(component * components) * accessor.count;
        check(accessor.byteOffset + size <= view.byteLength &&
                  view.byteOffset + view.byteLength <= gltf.buffers.at(0).data.size(),
              "an accessor exceeds its buffer");
        check(accessor.byteOffset % static_cast<std::size_t>(component) == 0,
              "an accessor is not aligned");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    evaluate::Model model = fuzz::modelOf(data, size);
    const std::size_t instances = model.instances.size();
    const std::size_t nodes = instances + model.cameras.size() + model.lights.size();
    const std::size_t meshes = model.meshes.size();
    const std::size_t materials = model.materials.size();
    const exporter::Exported exported =
        exporter::exportModel(std::move(model), *exporter::findFormat("glb"), {"fuzz"});
    check(exported.failure.empty() && exported.files.size() == 1,
          "the export fails or gives several files");
    StringSink sink;
    exported.files[0].write(sink);

    tinygltf::TinyGLTF loader;
    tinygltf::Model gltf;
    std::string errors, warnings;
    const bool isLoaded = loader.LoadBinaryFromMemory(
        &gltf, &errors, &warnings, reinterpret_cast<const unsigned char*>(sink.bytes.data()),
        static_cast<unsigned>(sink.bytes.size()));
    check(isLoaded && errors.empty() && warnings.empty(),
          "the file cannot be loaded without errors or warnings");
    check(gltf.nodes.size() == nodes && gltf.meshes.size() == meshes &&
              gltf.materials.size() == materials,
          "the file has other numbers of nodes, meshes or materials than the model");
    checkAccessors(gltf);
    return 0;
}
