#include "compat/geom/geom.h"
#include "convert/convert.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <new>
#include <unistd.h>

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
