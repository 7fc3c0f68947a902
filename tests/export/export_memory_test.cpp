#include "evaluate/evaluate.h"
#include "evaluate/fonts.h"
#include "tests/export/exported_files.h"
#include "tests/support/faults.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <climits>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace meshcast::exporter {
namespace {

// Colours by face and by corner, an image, solids, a mirror and a shear, lines and points. There
// are no concave faces and no text, because GLU's tessellator crashes when some of its allocations
// fail.
const std::string kScene = R"(#VRML V1.0 ascii
Separator {
  Info { string "a" }
  PerspectiveCamera { }
  PointLight { }
  DEF Box Separator { Material { diffuseColor [ 1 0 0, 0 1 0 ] } MaterialBinding { value PER_FACE }
    Cube { } Scale { scaleFactor -1 1 1 } Rotation { rotation 0 0 1 1 } Scale { scaleFactor 1 2 1 } Cube { } }
  USE Box
  Coordinate3 { point [ 0 0 0, 4 0 0, 4 4 0, 2 5 0, 0 4 0, 9 9 9 ] }
  Separator { Texture2 { image 2 1 3 0xff0000 0x00ff00 } IndexedFaceSet { coordIndex [ 0, 1, 2, 3, 4, -1 ] } }
  IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 4, -1 ] }
  Material { diffuseColor [ 1 0 0, 0 1 0, 0 0 1, 1 1 1, 0 0 0, 1 0 1 ] } MaterialBinding { value PER_VERTEX }
  IndexedLineSet { coordIndex [ 0, 1, 2, -1 ] }
  PointSet { }
  WWWAnchor { name "x" Sphere { } }
})";

struct Outcome {
    std::string bytes;
    std::size_t notes = 0;
};

/// Exports a scene to a format while the allocation with this number fails. Returns nothing if that
/// ended the export.
std::optional<Outcome> outcomeOf(const Scene& scene, const evaluate::FontFile& font,
                                 const Format& format, int failing) {
    class NoMessages final : public Diagnostics {
    public:
        void report(const Diagnostic& /*diagnostic*/) override {}
    } messages;
    evaluate::EvaluateOptions options;
    options.segments = 4;
    options.findFont = [&font](const evaluate::FontRequest&) { return font; };
    std::optional<Outcome> outcome(Outcome{});
    allocationToFail = failing;
    try {
        evaluate::Model model = evaluate::evaluateScene(scene, options, messages);
        outcome->notes = model.notes.size();
        const Exported exported = exportModel(std::move(model), format, {"scene"});
        outcome->notes += exported.failure.empty() ? 0 : 1;
        for (const File& file : exported.files) {
            outcome->bytes += bytesOf(file);
        }
    } catch (const std::bad_alloc&) {
        outcome.reset();
    }
    return outcome;
}

// When an allocation fails, alone or with all later ones, evaluation and export end with bad_alloc,
// or leave out an image with a note, or give the complete result.
TEST(Memory, ThatRunsOutEndsAnExportCleanly) {
    Scene scene;
    StandardErrorDiagnostics messages;
    MemorySource source(kScene);
    ASSERT_TRUE(readScene(scene, source, messages));
    const evaluate::FontFile font = evaluate::findInstalledFont({});
    for (const char* const extension : {"glb", "gltf"}) {
        const Format& format = *findFormat(extension);
        const auto whole = outcomeOf(scene, font, format, INT_MAX);
        const int allocations = INT_MAX - allocationToFail;
        allocationToFail = 0;
        ASSERT_TRUE(whole);
        ASSERT_GT(allocations, 200);
        int ended = 0;
        for (int n = 1; n <= 2 * allocations; ++n) {
            all_later_fail = n > allocations;
            const auto outcome = outcomeOf(scene, font, format, (n - 1) % allocations + 1);
            allocationToFail = 0;
            all_later_fail = false;
            ended += outcome ? 0 : 1;
            if (outcome && outcome->notes == whole->notes) {
                ASSERT_EQ(outcome->bytes, whole->bytes) << n;
            }
        }
        EXPECT_GT(ended, allocations);
    }
}

} // namespace
} // namespace meshcast::exporter
