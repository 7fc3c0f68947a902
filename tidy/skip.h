#pragma once

#include "tidy/lexer.h"

#include <functional>
#include <string_view>

namespace meshcast::tidy {

// Passing over what is dropped, whatever it is made of.

/// Told of every DEF in what is passed over: its name and where the word DEF begins.
using OnDefinition = std::function<void(const StringToken& name, const char* definition)>;

/// The end of the token at `p`: a string, a number, a word or any other single character.
const char* skipToken(Lexer& lexer, const char* p);

/// The place after the bracket that closes one opened before `p`, or the brace before it that
/// closes something outside.
const char* skipToBracket(Lexer& lexer, const char* p, const OnDefinition& onDefinition = {});

/// The place after the brace that closes the one at `p`, or the end of the text.
const char* skipBody(Lexer& lexer, const char* p, const OnDefinition& onDefinition = {});

/// True when the braces of a text match, apart from those in strings and comments.
bool bracesMatch(std::string_view text);

} // namespace meshcast::tidy
