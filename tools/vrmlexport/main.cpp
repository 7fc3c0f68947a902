#include "evaluate/evaluate.h"
#include "export/export.h"
#include "io/files.h"
#include "tools/scene_file/scene_file.h"
#include "tools/vrmlexport/command_line.h"
#include "tools/vrmlexport/export_report.h"
#include "tools/vrmlexport/progress.h"
#include "tools/vrmlexport/scene_input.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace vrmlexport {
namespace {

namespace evaluate = meshcast::evaluate;
namespace exporter = meshcast::exporter;

/// Writes an exported file to a descriptor, in large pieces.
class DescriptorSink final : public exporter::ByteSink {
public:
    explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {
        pending_.reserve(kPieceSize);
    }

    void write(std::string_view bytes) override {
        if (pending_.size() + bytes.size() > kPieceSize) {
            flush();
        }
        if (bytes.size() > kPieceSize) {
            writeNow(bytes);
        } else {
            pending_.append(bytes);
        }
    }
    /// Writes what is still pending, and tells whether anything went wrong.
    std::error_code flush() {
        writeNow(pending_);
        pending_.clear();
        return error_;
    }

private:
    static constexpr std::size_t kPieceSize = std::size_t(256) * 1024;

    void writeNow(std::string_view bytes) {
        if (!error_) {
            error_ = meshcast::io::writeAll(descriptor_, bytes);
        }
    }

    int descriptor_;
    std::string pending_;
    std::error_code error_;
};

std::error_code writeFile(const std::string& name, const exporter::File& file) {
    return meshcast::writeOutput(name, [&file](int descriptor) {
        DescriptorSink sink(descriptor);
        file.write(sink);
        return sink.flush();
    });
}

/// Writes the files beside the main one first: whoever finds that one finds all that it names.
bool writeFiles(const CommandLine& line, const exporter::Exported& exported, ExportReport& report) {
    if (line.output == "-" && exported.files.size() > 1) {
        report.fail("standard output", "cannot take files of several parts; write to a file, or "
                                       "choose another --format");
        return false;
    }
    const std::filesystem::path folder = std::filesystem::path(line.output).parent_path();
    for (std::size_t i = exported.files.size(); i-- > 0;) {
        const exporter::File& file = exported.files[i];
        const std::string name = file.name.empty() ? line.output : (folder / file.name).string();
        const std::error_code error = writeFile(name, file);
        if (error) {
            report.fail(name == "-" ? "standard output" : name,
                        "cannot be written: " + error.message());
            return false;
        }
    }
    return true;
}

bool exportScene(const CommandLine& line, ExportReport& report, Progress& progress) {
    std::unique_ptr<meshcast::Scene> scene = readInput(line, report, progress);
    if (scene == nullptr) {
        return false;
    }
    progress.begin("placing");
    evaluate::EvaluateOptions options;
    options.folder = meshcast::folderOf(line.scene);
    options.root = rootOf(line);
    options.segments = line.segments;
    evaluate::Model model = evaluate::evaluateScene(*scene, options, report.messages());
    scene.reset();

    progress.begin("writing");
    if (!line.report.empty()) {
        report.addCounts(countsOf(model));
    }
    std::vector<evaluate::Note> notes = std::move(model.notes);
    if (model.instances.empty()) {
        notes.push_back({evaluate::Note::Kind::kMissing, "the scene has no shapes", ""});
    }
    const exporter::Exported exported =
        exporter::exportModel(std::move(model), *line.format, {stemOf(line.output)});
    notes.insert(notes.end(), exported.notes.begin(), exported.notes.end());
    progress.clear();
    report.addNotes(notes);
    if (!exported.failure.empty()) {
        report.fail(line.output, "cannot be written: " + exported.failure);
        return false;
    }
    return writeFiles(line, exported, report);
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
    try {
        return vrmlexport::run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "vrmlexport: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << "vrmlexport: " << error.what() << '\n';
    }
    return vrmlexport::kNothingWritten;
}
