#include "fuzz/evaluated_model.h"

#include "evaluate/evaluate.h"
#include "evaluate/fonts.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

namespace meshcast::fuzz {

using namespace evaluate;

namespace {

class NoMessages final : public Diagnostics {
public:
    void report(const Diagnostic& /*diagnostic*/) override {}
};

} // namespace

Model modelOf(const std::uint8_t* data, std::size_t size) {
    // Searching for fonts takes too long.
    static const FontFile font = findInstalledFont({});
    EvaluateOptions options;
    options.findFont = [](const FontRequest&) { return font; };
    options.segments = 5;
    options.limits.nodes = options.limits.repeatedInstances = 10'000;
    options.limits.repeatedElements = 100'000;
    options.limits.imagePixels = 10'000;
    Scene scene;
    NoMessages messages;
    MemorySource source({reinterpret_cast<const char*>(data), size});
    readScene(scene, source, messages);
    return evaluateScene(scene, options, messages);
}

} // namespace meshcast::fuzz
