#include "evaluate/evaluate.h"
#include "evaluate/model_text.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

// Lists the evaluated model of a scene, for debugging the evaluation and for comparing different
// builds of it.
//     model_dump SCENE

namespace {

int dump(const char* path) {
    using namespace meshcast;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        std::perror(path);
        return 1;
    }
    Scene scene;
    StandardErrorDiagnostics diagnostics;
    DescriptorSource source(file);
    const bool isRead = readScene(scene, source, diagnostics);
    close(file);
    evaluate::EvaluateOptions options;
    options.folder = options.root = std::filesystem::absolute(path).parent_path();
    const std::string text =
        evaluate::modelText(evaluate::evaluateScene(scene, options, diagnostics));
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return isRead && isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: model_dump SCENE\n", stderr);
        return 2;
    }
    try {
        return dump(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "model_dump: %s\n", error.what());
        return 1;
    }
}
