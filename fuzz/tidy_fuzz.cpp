#include "convert/convert.h"
#include "tests/support/memory_sink.h"
#include "tidy/tidy.h"
#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

// Repairs any bytes. Unless they are refused, the result must be read to its end without a message,
// and repairing it again must not change it. If the scene could be read before, its stream must not
// change.

namespace {

struct Read {
    bool ok;
    bool atEnd; ///< Only space and comments follow the node.
    std::string messages;
    std::string stream; ///< If the scene is walked.
};

Read read(std::string_view text, bool walks) {
    using namespace meshcast;
    Read result{};
    Scene scene;
    MemorySource source(text);
    MessageText messages;
    VrmlInput input(scene, source, messages);
    result.ok = readScene(input);
    result.messages = messages.text;
    // A comment after the node may end without a newline.
    char c = 0;
    result.atEnd = input.skipWhiteSpace() && !input.get(c);
    if (walks) {
        MemorySink sink;
        convertScene(scene, sink, messages);
        result.stream = sink.bytes();
    }
    return result;
}

[[noreturn]] void fail(const char* what, std::string_view text, const std::string& said) {
    std::fprintf(stderr, "%s:\n%s\n----\n%.*s\n", what, said.c_str(), static_cast<int>(text.size()),
                 text.data());
    std::abort();
}

/// Whether a scene has few USE, which could otherwise repeat shapes any number of times.
bool isQuicklyWalked(std::string_view text) {
    std::size_t uses = 0;
    for (std::size_t at = text.find("USE"); at != std::string_view::npos;
         at = text.find("USE", at + 1)) {
        ++uses;
    }
    return uses <= 4;
}

/// Whether the tidier must see the same scene as the filter. The filter reads a byte 255 as an end
/// in places, `1.#INF` as 1, and `a#b` or `a"b` as a name, and ignores braces inside it; the tidier
/// differs.
bool isPlain(std::string_view text) {
    constexpr std::string_view kApart = " \t\r\n\f\v{}[](),;|";
    for (std::size_t at = text.find_first_of("#\"\xff"); at != std::string_view::npos;
         at = text.find_first_of("#\"\xff", at + 1)) {
        if (text[at] == '\xff' ||
            (at > 0 && text[at] == '#' && kApart.find(text[at - 1]) == std::string_view::npos)) {
            return false;
        }
    }
    constexpr std::string_view kSpace = " \t\r\n\f\v";
    for (std::size_t at = text.find_first_of("{}"); at != std::string_view::npos;
         at = text.find_first_of("{}", at + 1)) {
        const std::size_t word = text.find_last_of(kSpace, at) + 1; // 0 after npos.
        const std::size_t end = std::min(text.find_first_of(kSpace, at), text.size());
        if (text.substr(word, end - word).find_first_of("\"\\") != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace meshcast;

    const std::string scene(reinterpret_cast<const char*>(data), size);
    tidy::Options options;
    std::string reports;
    options.report = [&reports](const tidy::Message& message) {
        reports.append(std::to_string(message.line)).append(": ").append(message.what) += '\n';
    };
    const tidy::Result tidied = tidy::tidy(scene, options);
    if (!tidied.text) {
        return 0;
    }
    std::string said;
    options.report = [&said](const tidy::Message& message) { said.append(message.what) += '\n'; };
    const tidy::Result again = tidy::tidy(*tidied.text, options);
    if (again.text != tidied.text || again.repairs != 0) {
        fail("repairing the result again changes it", *tidied.text + "\n----\n" + scene, said);
    }
    const bool isCompared = isPlain(scene);
    const bool walks = isCompared && isQuicklyWalked(scene);
    const Read after = read(*tidied.text, walks);
    if (!after.ok || !after.messages.empty() || !after.atEnd) {
        fail("the result is not read to its end without a message", *tidied.text,
             reports + after.messages);
    }
    // Repaired point sets show all points, so their stream may change.
    if (walks && scene.find("PointSet") == std::string::npos) {
        const Read before = read(scene, walks);
        if (before.ok && before.atEnd && before.messages.empty() && before.stream != after.stream) {
            fail("the repaired scene has another stream", *tidied.text, scene);
        }
    }
    return 0;
}
