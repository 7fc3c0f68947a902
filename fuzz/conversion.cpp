#include "fuzz/conversion.h"

#include "compat/geom/settings.h"
#include "convert/context.h"
#include "convert/text_switch.h"
#include "convert/texture_switch.h"
#include "fuzz/catalogue_text.h"
#include "fuzz/finding.h"
#include "fuzz/memory_file.h"
#include "fuzz/object_values.h"
#include "tools/geomtool/decoder.h"
#include "traverse/groups.h"
#include "traverse/state.h"
#include "vrml/input.h"
#include "vrml/names.h"
#include "vrml/node.h"
#include "vrml/nodes.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sanitizer/common_interface_defs.h>
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

/// Splits a command as a shell would; empty when the shell would see more in it than words.
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

/// Stands in for the shell that runs image converters. (The fuzzer uses the shell for itself.)
extern "C" int __wrap_system(const char* command) {
    if (!isConverting) {
        return __real_system(command);
    }
    const std::vector<std::string> words = shellWords(command);
    if (words.size() != 3 || !words[2].starts_with(imageFolder() + "/")) {
        meshcast::fuzz::finding("the shell is told: %s", command);
    }
    return 0;
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace meshcast::fuzz {

namespace {

/// Bounds the walk of a scene by what its nodes cost, counted as often as USE makes them occur.
class WalkBudget {
public:
    /// False once the budget is used up.
    bool allows(QvNode& node) {
        left_ -= cost(node);
        if (left_ < 0) {
            return false;
        }
        auto* const group = dynamic_cast<QvGroup*>(&node);
        if (group == nullptr || group->walkMarks.isOpen) {
            return true;
        }
        group->walkMarks.isOpen = true;
        const ChildList& children = group->getChildList();
        const bool fits = std::all_of(children.begin(), children.end(),
                                      [this](QvNode* child) { return allows(*child); });
        group->walkMarks.isOpen = false;
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
};

struct Road {
    bool raw; ///< Version 7 rather than 10.
    bool verified;
    std::size_t pieceSize;
};

struct Outcome {
    std::vector<geom_stream::Object> objects;
    std::string messages;
};

/// Reads the scene, and walks it unless that would take long.
void readAndWalk(std::string_view scene, std::size_t pieceSize) {
    const NameScope names;
    MemorySource source(scene, pieceSize);
    NodePool nodes;
    VrmlInput input(nodes, source);
    QvState state;
    QvNode* root = nullptr;
    const bool isRead = readScene(input, root);
    check(isRead || root == nullptr, "a scene that cannot be read has a root");
    check(input.nestingDepth() == 0, "the reader's depth does not end at 0");
    if (root != nullptr && WalkBudget().allows(*root)) {
        root->traverse(state);
    }
    check(state.depth == 0 && traversalNestingLevel == 0 && TransformStack == nullptr,
          "the walk does not end where it began");
}

Outcome run(std::string_view scene, const Road& road) {
    static const MemoryFile output;
    static const MemoryFile errors;
    // A message of the texture code goes to standard output. It waits in the buffer until the
    // records have been taken.
    static const int buffered = std::setvbuf(stdout, nullptr, _IOFBF, std::size_t(1) << 20);
    check(buffered == 0, "standard output cannot be buffered");

    GEOMsettings settings;
    settings.version = road.raw ? GEOM_VERSION_RAW : GEOM_VERSION_XDR;
    settings.verify = road.verified;
    const GEOMscope scope(settings);
    output.clear();
    errors.clear();
    dup2(output.descriptor(), STDOUT_FILENO);
    dup2(errors.descriptor(), STDERR_FILENO);
    isConverting = true;
    readAndWalk(scene, road.pieceSize);
    isConverting = false;
    dup2(originalStandardError(), STDERR_FILENO);

    const std::string stream = output.contents();
    std::fflush(stdout);
    auto decoded = geom_stream::decode(std::as_bytes(std::span(stream)));
    if (decoded.error) {
        finding("at byte %zu: %s", decoded.error->offset, decoded.error->message.c_str());
    }
    return {std::move(decoded.objects), errors.contents()};
}

/// What a process does once, before its first scene.
int prepare() {
    check(setenv("RGBTMP", imageFolder().c_str(), 1) == 0, "no environment");
    constexpr std::string_view kTag = "MESHCAST";
    std::copy(kTag.begin(), kTag.end(), programTag.begin());
    initialiseConversion();
    // The names that every scene shares have to be there before those of the first are forgotten.
    catalogue();
    NodePool nodes;
    MemorySource source("#VRML V1.0 ascii\nGroup { }");
    VrmlInput input(nodes, source);
    QvNode* root = nullptr;
    return readScene(input, root) ? 1 : 0;
}

void compare(const Outcome& a, const Outcome& b) {
    if (a.messages != b.messages) {
        finding("messages differ:\n%s---\n%s", a.messages.c_str(), b.messages.c_str());
    }
    check(a.objects.size() == b.objects.size(), "the numbers of objects differ");
    for (std::size_t i = 0; i < a.objects.size(); ++i) {
        if (ObjectValues(a.objects[i]) != ObjectValues(b.objects[i])) {
            finding("object %zu differs", i);
        }
        check(a.objects[i].byte_count == expected_byte_count(a.objects[i]), "a wrong byte count");
    }
}

} // namespace

void convertAndCheck(std::string_view scene) {
    static const int prepared = prepare();
    static_cast<void>(prepared);

    const std::size_t choice = std::hash<std::string_view>()(scene);
    const bool verified = (choice & 1) != 0;
    textSwitch = (choice & 2) != 0 ? 1 : 0;
    const std::int32_t textures = (choice & 12) == 12 ? 1 : 0;

    textureSwitch = textures;
    const Outcome atOnce = run(scene, {false, verified, std::string_view::npos});
    textureSwitch = textures;
    const Outcome inPieces = run(scene, {true, verified, choice / 16 % 40 + 1});
    compare(atOnce, inPieces);
}

} // namespace meshcast::fuzz
