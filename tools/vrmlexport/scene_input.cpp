#include "tools/vrmlexport/scene_input.h"

#include "io/files.h"
#include "tidy/folder_scenes.h"
#include "tidy/tidy.h"
#include "tools/scene_file/scene_file.h"
#include "vrml/byte_source.h"
#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

// Most scenes need no repair. So a scene is first read as it is, which finds out, and only one that
// cannot be read without a message, or of which something might be left out, is tidied and read
// again: a good scene of 100 MB is ready a third sooner.

namespace vrmlexport {

namespace {

using meshcast::Scene;

/// The bytes of a text, which shows how far the reader has come.
class WatchedSource final : public meshcast::ByteSource {
public:
    WatchedSource(std::string_view text, Progress& progress)
        : source_(text, kPieceSize), size_(text.size()), progress_(progress) {}

    std::size_t read(char* buffer, std::size_t capacity) override {
        const std::size_t count = source_.read(buffer, capacity);
        taken_ += count;
        progress_.advance(taken_, size_);
        return count;
    }

private:
    static constexpr std::size_t kPieceSize = std::size_t(1) << 20U;

    meshcast::MemorySource source_;
    std::size_t size_, taken_ = 0;
    Progress& progress_;
};

/// Notices that there was a message.
class AnyMessage final : public meshcast::Diagnostics {
public:
    void report(const meshcast::Diagnostic& /*diagnostic*/) override { isReported = true; }

    bool isReported = false;
};

/// Reads a scene that needs no repair: there is no message, nothing after the root, and no node
/// that the tidier would replace. False if it is none.
bool readGoodScene(const std::string& text, bool withInlines, Scene& scene, Progress& progress) {
    if (withInlines && text.find("WWWInline") != std::string::npos) {
        return false;
    }
    AnyMessage messages;
    WatchedSource source(text, progress);
    meshcast::VrmlInput input(scene, source, messages);
    if (!meshcast::readScene(input) || scene.root == nullptr || messages.isReported ||
        scene.newestUnknownTable != nullptr) {
        return false;
    }
    char c = 0;
    return !input.skipWhiteSpace() || !input.get(c);
}

/// Reads a scene with the messages of the filter; null if it cannot be read in full.
std::unique_ptr<Scene> readStrictly(const std::string& text, ExportReport& report,
                                    Progress& progress) {
    progress.begin("reading");
    auto scene = std::make_unique<Scene>();
    WatchedSource source(text, progress);
    return meshcast::readScene(*scene, source, report.messages()) ? std::move(scene) : nullptr;
}

/// Repairs a scene; nothing if that cannot be done, which is reported.
std::optional<std::string> repaired(std::string text, const CommandLine& line, ExportReport& report,
                                    Progress& progress) {
    progress.begin("repairing");
    meshcast::tidy::Options options;
    options.path = meshcast::shownName(line.scene);
    options.report = [&report](const meshcast::tidy::Message& message) { report.add(message); };
    std::optional<meshcast::tidy::FolderScenes> inlines;
    if (!line.withoutInlines) {
        auto folder = meshcast::io::Folder::open(rootOf(line));
        if (const auto* const error = std::get_if<std::error_code>(&folder)) {
            report.fail(rootOf(line) + ": cannot be used as a root: " + error->message());
            return std::nullopt;
        }
        options.identity = meshcast::tidy::fileIdentity(line.scene);
        inlines.emplace(std::get<meshcast::io::Folder>(std::move(folder)));
        options.inlines = &*inlines;
    }
    meshcast::tidy::Result result = meshcast::tidy::tidy(std::move(text), options);
    progress.clear();
    report.addRepairCount(result.repairs);
    if (!result.text) {
        report.fail(options.path + ": " + result.refusal);
    }
    return std::move(result.text);
}

} // namespace

std::unique_ptr<Scene> readInput(const CommandLine& line, ExportReport& report,
                                 Progress& progress) {
    const std::string shown = meshcast::shownName(line.scene);
    progress.begin("reading");
    auto bytes = meshcast::readSceneFile(line.scene);
    if (bytes.index() == 1) {
        report.fail(shown + ": " + std::get<1>(bytes));
        return nullptr;
    }
    std::string text = std::get<0>(std::move(bytes));
    if (!line.isStrict) {
        auto scene = std::make_unique<Scene>();
        if (readGoodScene(text, !line.withoutInlines, *scene, progress)) {
            return scene;
        }
        scene.reset();
        auto tidied = repaired(std::move(text), line, report, progress);
        if (!tidied) {
            return nullptr;
        }
        text = *std::move(tidied);
    }
    auto scene = readStrictly(text, report, progress);
    if (scene == nullptr) {
        report.fail(shown + (line.isStrict ? ": cannot be read without repairs"
                                           : ": cannot be read in full"));
    }
    return scene;
}

} // namespace vrmlexport
