// Draws a picture of the scene on standard input and prints the share of pixels that the scene
// covers.

#include "evaluate/evaluate.h"
#include "render/picture.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <iostream>

using namespace meshcast;

int main() {
    DescriptorSource input(0);
    StandardErrorDiagnostics messages;
    Scene scene;
    if (!readScene(scene, input, messages)) {
        return 1;
    }
    render::PictureOptions options;
    options.background.reset(); // transparent
    const auto picture = render::drawPicture(evaluate::evaluateScene(scene, {}, messages), options);
    const auto* pixels = std::get_if<evaluate::Pixels>(&picture);
    if (pixels == nullptr) {
        std::cerr << *std::get_if<std::string>(&picture) << '\n';
        return 1;
    }
    std::size_t covered = 0;
    for (std::size_t i = 3; i < pixels->bytes.size(); i += 4) {
        covered += pixels->bytes[i] != 0 ? 1 : 0;
    }
    std::cout << 100 * covered / (pixels->bytes.size() / 4) << " % covered\n";
}
