#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

/// What a message is about. It decides the words around the text.
enum class DiagnosticKind : std::uint8_t {
    kReadError,    ///< The scene cannot be read any further; has a line number.
    kSceneError,   ///< An error without a line number: "OPERATION(): MESSAGE".
    kShapeError,   ///< A shape has an index out of range; the shape is still converted.
    kGeomError,    ///< The GEOM library refuses a request.
    kCheckFinding, ///< Verification finds a fault in an object.
};

/// One message about a scene.
struct Diagnostic {
    DiagnosticKind kind;
    std::int32_t line = 0; ///< The line of the scene, from 1; 0 where the kind has none.
    std::string_view text; ///< Without the words that its kind puts around it.
};

/// Receives the messages about one scene, in order.
class Diagnostics {
public:
    virtual ~Diagnostics() = default;

    virtual void report(const Diagnostic& diagnostic) = 0;
};

/// Reports a text formatted as by `printf`, of any length up to 2 GiB. The text ends at its first
/// zero byte; readers of the messages rely on that.
[[gnu::format(printf, 4, 5)]] void report(Diagnostics& diagnostics, DiagnosticKind kind,
                                          std::int32_t line, const char* format, ...);
[[gnu::format(printf, 4, 0)]] void report(Diagnostics& diagnostics, DiagnosticKind kind,
                                          std::int32_t line, const char* format,
                                          std::va_list arguments);

/// A message in the filter's words, with its newline.
std::string messageText(const Diagnostic& diagnostic);

/// Prints every message to standard error.
class StandardErrorDiagnostics final : public Diagnostics {
public:
    void report(const Diagnostic& diagnostic) override;
};

} // namespace meshcast

#pragma GCC visibility pop
