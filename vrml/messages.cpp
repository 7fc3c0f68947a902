#include "vrml/messages.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace meshcast {

std::string formatMessage(const char* format, std::va_list arguments) {
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

void vrmlError(const char* operation, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string message = formatMessage(format, arguments);
    va_end(arguments);
    std::fprintf(stderr, "VRML error in %s(): %s\n", operation, message.c_str());
}

void outOfMemory() {
    if (const std::new_handler handler = std::get_new_handler()) {
        handler();
    }
    std::abort();
}

} // namespace meshcast
