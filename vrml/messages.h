#pragma once

#include <cstdarg>
#include <string>

namespace meshcast {

/// Formats like `vsnprintf`, at any length that it can count (2 GiB; nothing beyond).
[[gnu::format(printf, 1, 0)]] std::string formatMessage(const char* format, std::va_list arguments);

/// Reports an error that belongs to no place in the input, on standard error:
/// "VRML error in OPERATION(): MESSAGE".
[[gnu::format(printf, 2, 3)]] void vrmlError(const char* operation, const char* format, ...);

/// Ends the process after an exhausted allocation of the reader. The installed new-handler has
/// the word, as it has when `new` fails; without one the process aborts.
[[noreturn]] void outOfMemory();

} // namespace meshcast
