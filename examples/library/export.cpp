// Writes the scene on standard input to standard output as a GLB file.

#include "export/export.h"

#include "evaluate/evaluate.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <iostream>
#include <string_view>

using namespace meshcast;

class StandardOutput final : public exporter::ByteSink {
    void write(std::string_view bytes) override { std::cout << bytes; }
};

int main() {
    DescriptorSource input(0);
    StandardErrorDiagnostics messages;
    Scene scene;
    if (!readScene(scene, input, messages)) {
        return 1;
    }
    const auto exported = exporter::exportModel(evaluate::evaluateScene(scene, {}, messages),
                                                *exporter::findFormat("glb"), {});
    if (!exported.failure.empty()) {
        std::cerr << exported.failure << '\n';
        return 1;
    }
    StandardOutput output;
    exported.files.front().write(output);
}
