#include "tools/vrmlexport/scene_input.h"

#include "io/files.h"
#include "tidy/folder_scenes.h"
#include "tidy/tidy.h"
#include "tools/scene_file/scene_file.h"
#include "vrml/byte_source.h"
#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <variant>

// Most scenes need no repair, and tidying a large one takes a third of the time of everything else.
// So a scene is first read without tidying. It is tidied and read again only if there was a
// message, or if something might be left out.

namespace vrmlexport {

namespace {

using meshcast::Scene;

/// Passes bytes to the reader, shows its progress, and looks for a word in the bytes.
class WatchedSource final : public meshcast::ByteSource {
public:
    WatchedSource(meshcast::ByteSource& source, std::uint64_t size, Progress& progress)
        : source_(source), size_(size), progress_(progress) {}

    std::size_t read(char* buffer, std::size_t capacity) override {
        const std::size_t count = source_.read(buffer, std::min(capacity, kPieceSize));
        const std::string_view piece(buffer, count);
        // The word may begin in the previous block.
        const std::string seam = tail_ + std::string(piece.substr(0, kInline.size() - 1));
        hasInlines_ = hasInlines_ || seam.find(kInline) != std::string::npos ||
                      piece.find(kInline) != std::string_view::npos;
        tail_ = seam.substr(seam.size() - std::min(seam.size(), kInline.size() - 1));
        if (count >= kInline.size()) {
            tail_ = piece.substr(count - kInline.size() + 1);
        }
        taken_ += count;
        progress_.advance(taken_, size_);
        return count;
    }
    bool hasInlines() const { return hasInlines_; }

private:
    static constexpr std::size_t kPieceSize = std::size_t(1) << 20U;
    static constexpr std::string_view kInline = "WWWInline";

    meshcast::ByteSource& source_;
    std::uint64_t size_, taken_ = 0;
    Progress& progress_;
    std::string tail_; ///< The last bytes of what has been read.
    bool hasInlines_ = false;
};

/// Remembers whether there was a message.
class AnyMessage final : public meshcast::Diagnostics {
public:
    void report(const meshcast::Diagnostic& /*diagnostic*/) override { isReported = true; }

    bool isReported = false;
};

/// Reads a scene that needs no repair: there is no message, nothing after the root, and no node
/// that the tidier would replace. Null for other scenes.
std::unique_ptr<Scene> readGoodScene(WatchedSource& source, bool withInlines) {
    auto scene = std::make_unique<Scene>();
    AnyMessage messages;
    meshcast::VrmlInput input(*scene, source, messages);
    if (!meshcast::readScene(input) || scene->root == nullptr || messages.isReported ||
        scene->newestUnknownTable != nullptr) {
        return nullptr;
    }
    char c = 0;
    const bool hasMore = input.skipWhiteSpace() && input.get(c);
    return hasMore || (withInlines && source.hasInlines()) ? nullptr : std::move(scene);
}

/// The same directly from a file, so that its text takes no memory. Null for pipes and other
/// files that cannot be read twice.
std::unique_ptr<Scene> readGoodFile(const std::string& name, bool withInlines, Progress& progress) {
    const meshcast::io::Descriptor file(
        name == "-" ? -1 : ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return nullptr;
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > meshcast::tidy::kLargestScene) {
        return nullptr;
    }
    meshcast::DescriptorSource bytes(file.number());
    WatchedSource source(bytes, size, progress);
    return readGoodScene(source, withInlines);
}

/// Reads a scene with the messages of the filter; null if it cannot be read in full.
std::unique_ptr<Scene> readStrictly(const std::string& text, ExportReport& report,
                                    Progress& progress) {
    progress.begin(Step::kReadingAgain);
    auto scene = std::make_unique<Scene>();
    meshcast::MemorySource bytes(text);
    WatchedSource source(bytes, text.size(), progress);
    return meshcast::readScene(*scene, source, report.messages()) ? std::move(scene) : nullptr;
}

/// Repairs a scene. If that is not possible, reports why and returns nothing.
std::optional<std::string> repaired(std::string text, const CommandLine& line, ExportReport& report,
                                    Progress& progress) {
    progress.begin(Step::kRepairing);
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
    progress.begin(Step::kReading);
    if (!line.isStrict) {
        if (auto scene = readGoodFile(line.scene, !line.withoutInlines, progress)) {
            return scene;
        }
    }
    auto bytes = meshcast::readSceneFile(line.scene);
    if (bytes.index() == 1) {
        report.fail(shown + ": " + std::get<1>(bytes));
        return nullptr;
    }
    std::string text = std::get<0>(std::move(bytes));
    if (!line.isStrict) {
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
