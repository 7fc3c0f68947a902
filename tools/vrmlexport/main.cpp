#include "evaluate/evaluate.h"
#include "export/export.h"
#include "tools/export_output/export_output.h"
#include "tools/scene_file/scene_file.h"
#include "tools/vrmlexport/command_line.h"
#include "tools/vrmlexport/export_report.h"
#include "tools/vrmlexport/progress.h"
#include "tools/vrmlexport/scene_input.h"

#include <exception>
#include <iostream>
#include <limits>
#include <malloc.h>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace vrmlexport {
namespace {

namespace evaluate = meshcast::evaluate;
namespace exporter = meshcast::exporter;

/// Keeps an object until the process ends, which is faster than destroying a large one. Only the
/// first object of each type; leak checkers find it by the pointer.
template <typename Object>
const Object& keptForGood(std::unique_ptr<const Object> object) {
    static const Object* volatile kept = object.release();
    return *kept;
}

bool exportScene(const CommandLine& line, ExportReport& report, Progress& progress) {
    std::unique_ptr<meshcast::Scene> scene = readInput(line, report, progress);
    if (scene == nullptr) {
        return false;
    }
    progress.begin(Step::kPlacing);
    evaluate::EvaluateOptions evaluation;
    evaluation.folder = meshcast::folderOf(line.scene);
    evaluation.root = rootOf(line);
    evaluation.segments = line.segments;
    evaluate::Model model = evaluate::evaluateScene(keptForGood<meshcast::Scene>(std::move(scene)),
                                                    evaluation, report.messages());

    progress.begin(Step::kWriting);
    if (!line.report.empty()) {
        report.addCounts(countsOf(model));
    }
    std::vector<evaluate::Note> notes = std::move(model.notes);
    if (model.instances.empty()) {
        notes.push_back({evaluate::Note::Kind::kMissing, "the scene has no shapes", ""});
    }
    const exporter::Options options = {meshcast::stemOf(line.output), line.picture,
                                       [&report] { return report.pageJson(); }};
    const auto& exported = keptForGood<exporter::Exported>(std::make_unique<exporter::Exported>(
        exporter::exportModel(std::move(model), *line.format, options)));
    notes.insert(notes.end(), exported.notes.begin(), exported.notes.end());
    progress.clear();
    report.addNotes(notes);
    if (!exported.failure.empty()) {
        report.fail(line.output + ": cannot be written: " + exported.failure);
        return false;
    }
    progress.begin(Step::kWriting);
    const std::string failure = meshcast::writeExported(exported, line.output);
    progress.clear();
    if (!failure.empty()) {
        report.fail(failure);
    }
    return failure.empty();
}

ExitStatus run(int argc, char** argv) {
    CommandLine line;
    if (const auto status = parseCommandLine(argc, argv, line)) {
        return *status;
    }
    ExportReport report(line);
    Progress progress(line.showsProgress);
    const bool isWritten = exportScene(line, report, progress);
    return report.write() && isWritten ? kWritten : kNothingWritten;
}

} // namespace
} // namespace vrmlexport

int main(int argc, char** argv) {
#ifdef __GLIBC__
    // The scene, its model and the file are of similar size and needed one after the other. Freed
    // memory is kept for the next of them: returning every page to the system and getting it back
    // would take a tenth of the time.
    constexpr int kKeep = std::numeric_limits<int>::max();
    mallopt(M_MMAP_THRESHOLD, kKeep);
    mallopt(M_TRIM_THRESHOLD, kKeep);
    mallopt(M_TOP_PAD, 16 * 1024 * 1024);
#endif
    try {
        return vrmlexport::run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "vrmlexport: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << "vrmlexport: " << error.what() << '\n';
    }
    return vrmlexport::kNothingWritten;
}
