#include "compat/geom/geom.h"
#include "convert/object_sink.h"
#include "driver/environment.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"

#include <new>
#include <unistd.h>

int main() {
    using namespace meshcast;

    std::set_new_handler([] { GEOMfatal_error("out of memory"); });
    // POSIX makes no difference between text and binary descriptors, so no byte of the stream is
    // translated on its way out.
    DescriptorSource scene(STDIN_FILENO);
    DescriptorSink stream(STDOUT_FILENO);
    StandardErrorDiagnostics messages;
    // A scene that cannot be read has been reported, and the exit status is 0 all the same.
    convertScene(scene, stream, messages, environmentOptions());
    return 0;
}
