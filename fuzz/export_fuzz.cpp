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

// What is exported of any scene is read again by another implementation of the format, and holds
// as much as the model did.

using namespace meshcast;
using fuzz::check;

namespace {

class StringSink final : public exporter::ByteSink {
public:
    void write(std::string_view more) override { bytes.append(more); }

    std::string bytes;
};

/// Every list of a file lies in its buffer.
void checkAccessors(const tinygltf::Model& gltf) {
    for (const tinygltf::Accessor& accessor : gltf.accessors) {
        check(accessor.bufferView >= 0 && accessor.count > 0, "a list with something in it");
        const auto& view = gltf.bufferViews.at(static_cast<std::size_t>(accessor.bufferView));
        const auto component =
            tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType));
        const auto components =
            tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
        const auto size = static_cast<std::size_t>(component * components) * accessor.count;
        check(accessor.byteOffset + size <= view.byteLength &&
                  view.byteOffset + view.byteLength <= gltf.buffers.at(0).data.size(),
              "a list within its buffer");
        check(accessor.byteOffset % static_cast<std::size_t>(component) == 0, "an aligned list");
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
    check(exported.failure.empty() && exported.files.size() == 1, "one file");
    StringSink sink;
    exported.files[0].write(sink);

    tinygltf::TinyGLTF loader;
    tinygltf::Model gltf;
    std::string errors, warnings;
    const bool isLoaded = loader.LoadBinaryFromMemory(
        &gltf, &errors, &warnings, reinterpret_cast<const unsigned char*>(sink.bytes.data()),
        static_cast<unsigned>(sink.bytes.size()));
    check(isLoaded && errors.empty() && warnings.empty(), "a file that can be loaded");
    check(gltf.nodes.size() == nodes && gltf.meshes.size() == meshes &&
              gltf.materials.size() == materials,
          "all that the model holds");
    checkAccessors(gltf);
    return 0;
}
