#include "compat/geom/geom.h"
#include "convert/convert.h"
#include "driver/heap.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <new>
#include <unistd.h>

int main() {
    using namespace meshcast;

    std::set_new_handler([] { GEOMfatal_error("out of memory"); });
    // POSIX does not distinguish text and binary descriptors, so no byte of the stream is changed.
    DescriptorSource source(STDIN_FILENO);
    DescriptorSink stream(STDOUT_FILENO);
    StandardErrorDiagnostics messages;
    // Never destroyed: the process ends anyway, and destroying a large scene takes time.
    static Scene& scene = *new Scene;
    prepareHeap(STDIN_FILENO);
    // A scene that cannot be read is reported, but the exit status is still 0.
    readScene(scene, source, messages);
    convertScene(scene, stream, messages, environmentOptions());
    return 0;
}
