#pragma once

#include "tools/vrmltidy/cursor.h"

#include <functional>
#include <string_view>

namespace meshcast::tidy {

// Passing over what is dropped, whatever it is made of.

/// Told of every DEF in what is passed over: its name and where the word DEF stands.
using OnDefinition = std::function<void(std::string_view name, const char* definition)>;

/// Passes over what stands up to the bracket that closes an open one, and over that; stops in front
/// of a brace that closes what is outside.
void skipToBracket(Cursor& cursor, const OnDefinition& onDefinition = {});

/// Passes over a body from its opening brace to behind the closing one, or to the end.
void skipBody(Cursor& cursor, const OnDefinition& onDefinition);

/// Passes over a string, a number, a word or any other character that is no brace.
void skipToken(Cursor& cursor);

/// True when the braces up to the end match, those in strings and comments aside.
bool bracesMatch(Cursor cursor);

} // namespace meshcast::tidy
