#include "fuzz/checked_conversion.h"

#include "convert/convert.h"
#include "fuzz/finding.h"
#include "fuzz/object_values.h"
#include "geom_stream/record_reader.h"
#include "tests/support/memory_sink.h"
#include "vrml/input.h"
#include "vrml/nodes.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace {

/// The folder for converted images, removed when the process ends.
const std::string& imageFolder() {
    static const std::string folder = [] {
        std::string path = std::filesystem::temp_directory_path() / "meshcast-fuzz-XXXXXX";
        meshcast::fuzz::check(mkdtemp(path.data()) != nullptr, "no folder for images");
        return path;
    }();
    static const int registered = std::atexit([] { std::filesystem::remove_all(imageFolder()); });
    static_cast<void>(registered);
    return folder;
}

/// Splits a command as a shell would. Empty if the shell would do more than start one program.
std::vector<std::string> shellWords(const char* command) {
    std::vector<std::string> words(1);
    bool quoted = false;
    for (const char* c = command; *c != '\0'; ++c) {
        if (*c == '\'') {
            quoted = !quoted;
        } else if (!quoted && *c == '\\' && c[1] == '\'') {
            words.back() += *++c;
        } else if (!quoted && *c == ' ') {
            words.emplace_back();
        } else if (quoted || std::string_view("|&;<>()$`\\\"\t\n*?[]#~!{}").find(*c) ==
                                 std::string_view::npos) {
            words.back() += *c;
        } else {
            return {};
        }
    }
    return quoted ? std::vector<std::string>() : words;
}

bool isConverting = false;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
extern "C" int __real_system(const char* command);

/// Replaces the shell that runs image converters; checks their commands. Other calls, which are
/// those of the fuzzer itself, run as usual.
extern "C" int __wrap_system(const char* command) {
    if (!isConverting) {
        return __real_system(command);
    }
    const std::vector<std::string> words = shellWords(command);
    if (words.size() != 3 || !words[2].starts_with(imageFolder() + "/")) {
        meshcast::fuzz::finding("a command that is not safe in a shell: %s", command);
    }
    return 0;
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace meshcast::fuzz {

namespace {

/// Limits the cost of walking a scene. Nodes count each time that USE repeats them.
class WalkBudget {
public:
    /// False once the budget is exceeded.
    bool allows(const QvNode& node) {
        left_ -= cost(node);
        if (left_ < 0) {
            return false;
        }
        const auto* const group = dynamic_cast<const QvGroup*>(&node);
        if (group == nullptr || !open_.insert(group).second) {
            return true;
        }
        const ChildList children = group->getChildList();
        const bool fits = std::all_of(children.begin(), children.end(),
                                      [this](const QvNode* child) { return allows(*child); });
        open_.erase(group);
        return fits;
    }

private:
    std::int64_t cost(const QvNode& node) {
        constexpr std::int64_t kGroup = 10;
        constexpr std::int64_t kAnyNode = 500;
        if (const auto* const coordinates = dynamic_cast<const QvCoordinate3*>(&node)) {
            points_ = std::max<std::int64_t>(points_, coordinates->point.num);
        } else if (const auto* const faces = dynamic_cast<const QvIndexedFaceSet*>(&node)) {
            return kAnyNode + points_ + faces->coordIndex.num;
        } else if (const auto* const lines = dynamic_cast<const QvIndexedLineSet*>(&node)) {
            return kAnyNode + lines->coordIndex.num;
        } else if (dynamic_cast<const QvPointSet*>(&node) != nullptr) {
            return kAnyNode + points_;
        } else if (dynamic_cast<const QvGroup*>(&node) != nullptr) {
            return kGroup;
        }
        return kAnyNode;
    }

    std::int64_t left_ = 250'000;
    std::int64_t points_ = 0;
    std::set<const QvGroup*> open_;
};

struct Outcome {
    std::vector<geom_stream::Object> objects;
    std::string messages;
};

/// Reads the scene in pieces of a given size, and converts it unless that would take long. Repeated
/// shapes are written as copies of their records, or converted again.
Outcome run(std::string_view text, std::size_t pieceSize, bool takesCopies,
            const ConvertOptions& options) {
    Scene scene;
    MemorySource source(text, pieceSize);
    MemorySink sink(takesCopies);
    MessageText messages;
    VrmlInput input(scene, source, messages);
    const bool isRead = readScene(input);
    check(isRead || scene.root == nullptr, "a scene that cannot be read has a root");
    check(input.nestingDepth() == 0, "the reader's depth does not end at 0");
    if (scene.root != nullptr && WalkBudget().allows(*scene.root)) {
        isConverting = true;
        convertScene(scene, sink, messages, options);
        isConverting = false;
    }
    const std::string stream = sink.bytes();
    auto decoded = geom_stream::decode(std::as_bytes(std::span(stream)));
    if (decoded.error) {
        finding("at byte %s: %s", std::to_string(decoded.error->offset).c_str(),
                decoded.error->message.c_str());
    }
    return {std::move(decoded.objects), sink.printed + messages.text};
}

void compare(const Outcome& a, const Outcome& b) {
    if (a.messages != b.messages) {
        finding("messages differ:\n%s---\n%s", a.messages.c_str(), b.messages.c_str());
    }
    check(a.objects.size() == b.objects.size(),
          "the two conversions have different numbers of objects");
    for (std::size_t i = 0; i < a.objects.size(); ++i) {
        if (ObjectValues(a.objects[i]) != ObjectValues(b.objects[i])) {
            finding("object %zu differs", i);
        }
        check(a.objects[i].byteCount == expectedByteCount(a.objects[i]), "a wrong byte count");
    }
}

} // namespace

void convertAndCheck(std::string_view scene) {
    const std::size_t choice = std::hash<std::string_view>()(scene);
    ConvertOptions options;
    options.verify = (choice & 1) != 0;
    options.text = (choice & 2) != 0;
    options.textures = (choice & 12) == 12;
    options.images.folder = imageFolder();

    const Outcome atOnce = run(scene, std::string_view::npos, true, options);
    options.version = GEOM_VERSION_RAW;
    const Outcome inPieces = run(scene, choice / 16 % 40 + 1, false, options);
    compare(atOnce, inPieces);
}

} // namespace meshcast::fuzz
