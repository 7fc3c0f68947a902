#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast::tidy {

// Repairs a damaged scene, or one in another dialect, so that the filter reads it to its end.
// Scenes that the filter already reads keep their meaning, and nearly always every byte.
//
// A tolerant parser reads the text once and makes a list of edits, each with a message. Then the
// edits are applied and reported.

/// A report about a line of a file: something that was changed, or deliberately not changed. The
/// texts hold no control characters.
struct Message {
    std::string_view file;
    std::size_t line;
    std::string_view what;
};
using Report = std::function<void(const Message&)>;

/// Finds the scenes that WWWInline nodes name.
class InlineSource {
public:
    struct Scene {
        std::string path;     ///< The name of the scene in messages.
        std::string identity; ///< Equal for equal files.
        std::string bytes;    ///< The bytes of the file, inflated.
        std::string repair;   ///< The message about inflating it; may be empty.
        std::string failure;  ///< Why there are no bytes; empty on success.
    };

    InlineSource() = default;
    InlineSource(const InlineSource&) = delete;
    InlineSource& operator=(const InlineSource&) = delete;
    virtual ~InlineSource() = default;

    /// The scene that `name` means in the scene `fromPath`. Names of the same file give the same
    /// object: each file is read once.
    virtual std::shared_ptr<const Scene> open(const std::string& name,
                                              const std::string& fromPath) = 0;
};

struct Options {
    std::string path;                ///< The path of the scene, for messages and for InlineSource.
    std::string identity;            ///< The identity of the scene, as in InlineSource::Scene.
    Report report;                   ///< Called for each message after the scene has been parsed.
    InlineSource* inlines = nullptr; ///< Null: WWWInline nodes are kept.
};

struct Result {
    std::optional<std::string> text; ///< The repaired scene; nothing when it cannot be repaired.
    std::string refusal;             ///< Why it cannot be repaired.
    std::size_t repairs = 0;
};

/// The largest size of a scene in bytes, before and after inflation.
inline constexpr std::uint64_t kLargestScene = std::uint64_t(4) << 30;
/// Definitions repeated where they are used may add at most this many times the size of the input.
/// Otherwise a few definitions that use one another could fill the memory.
inline constexpr std::uint64_t kLargestGrowth = 4;
/// The largest total size of the scenes read for WWWInline nodes, and of the texts that replace
/// these nodes.
inline constexpr std::uint64_t kMostInlinedBytes = std::uint64_t(1) << 30;
/// The number of WWWInline nodes that are tried; later ones are kept.
inline constexpr std::size_t kMostInlines = 10'000;
/// The largest nesting depth of inlined scenes, and of repeated definitions that use one another.
inline constexpr std::size_t kDeepestInline = 64;
inline constexpr std::size_t kDeepestRestoring = 16;

/// Repairs the bytes of a file, which may be gzip-compressed. Input errors are reported in the
/// result.
Result tidy(std::string bytes, const Options& options);

} // namespace meshcast::tidy

#pragma GCC visibility pop
