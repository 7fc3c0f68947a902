#include "vrml/diagnostics.h"

#include <array>
#include <cstdio>

namespace meshcast {

void report(Diagnostics& diagnostics, DiagnosticKind kind, std::int32_t line, const char* format,
            std::va_list arguments) {
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    diagnostics.report({kind, line, text.c_str()});
}

void report(Diagnostics& diagnostics, DiagnosticKind kind, std::int32_t line, const char* format,
            ...) {
    std::va_list arguments;
    va_start(arguments, format);
    report(diagnostics, kind, line, format, arguments);
    va_end(arguments);
}

std::string messageText(const Diagnostic& diagnostic) {
    constexpr std::array kPrefixes = {"VRML read error: ", "VRML error in ",
                                      "Error: ", "GEOM error: ", "GEOMcheck_obj error: "};
    std::string message = kPrefixes[static_cast<std::size_t>(diagnostic.kind)];
    message.append(diagnostic.text).append("\n");
    if (diagnostic.kind == DiagnosticKind::kReadError) {
        std::array<char, 64> place{};
        std::snprintf(place.data(), place.size(), "\tOccurred at line %3d\n", diagnostic.line);
        message.append(place.data());
    }
    return message;
}

void StandardErrorDiagnostics::report(const Diagnostic& diagnostic) {
    const std::string message = messageText(diagnostic);
    std::fwrite(message.data(), 1, message.size(), stderr);
}

} // namespace meshcast
