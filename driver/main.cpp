#include "compat/geom/geom.h"
#include "compat/geom/settings.h"
#include "convert/convert.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <cstdlib>
#include <new>
#include <string>
#include <unistd.h>

namespace {

/// The options that the environment asks for.
meshcast::ConvertOptions environmentOptions() {
    const auto replace = [](std::string& text, const char* variable) {
        if (const char* const value = std::getenv(variable)) {
            text = value;
        }
    };
    const GEOMsettings geom = GEOMenvironment_settings();
    meshcast::ConvertOptions options;
    options.version = geom.version;
    options.verify = geom.verify;
    replace(options.images.folder, "RGBTMP");
    auto& [rgb, gif, jpeg] = options.images.converters;
    replace(rgb, "RGBCONV");
    replace(gif, "GIFCONV");
    replace(jpeg, "JPGCONV");
    return options;
}

} // namespace

int main() {
    using namespace meshcast;

    std::set_new_handler([] { GEOMfatal_error("out of memory"); });
    // POSIX makes no difference between text and binary descriptors, so no byte of the stream is
    // translated on its way out.
    DescriptorSource source(STDIN_FILENO);
    DescriptorSink stream(STDOUT_FILENO);
    StandardErrorDiagnostics messages;
    // Never taken apart: what it holds goes with the process.
    static Scene& scene = *new Scene;
    // A scene that cannot be read has been reported, and the exit status is 0 all the same.
    readScene(scene, source, messages);
    convertScene(scene, stream, messages, environmentOptions());
    return 0;
}
