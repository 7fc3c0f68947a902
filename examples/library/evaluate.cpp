// Counts what a viewer shows of the scene on standard input.

#include "evaluate/evaluate.h"

#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <iostream>

int main() {
    meshcast::DescriptorSource input(0);
    meshcast::StandardErrorDiagnostics messages;
    meshcast::Scene scene;
    if (!readScene(scene, input, messages)) {
        return 1;
    }
    const auto model = meshcast::evaluate::evaluateScene(scene, {}, messages);
    std::cout << model.instances.size() << " shapes, " << model.materials.size() << " materials, "
              << model.lights.size() << " lights\n";
}
