#pragma once

#include "tidy/lexer.h"

#include <functional>
#include <string_view>

namespace meshcast::tidy {

// Finding the end of text that is dropped, whatever it contains.

/// Called for every DEF in the skipped text, with its name and the position of the word DEF.
using OnDefinition = std::function<void(const StringToken& name, const char* definition)>;

/// The end of the token at `p`: a string, a number, a word or any other single character.
const char* skipToken(Lexer& lexer, const char* p);

/// The position after the bracket that closes one opened before `p`. When a brace that was opened
/// before `p` closes earlier, the position of that brace.
const char* skipToBracket(Lexer& lexer, const char* p, const OnDefinition& onDefinition = {});

/// The position after the brace that closes the one at `p`, or the end of the text.
const char* skipBody(Lexer& lexer, const char* p, const OnDefinition& onDefinition = {});

/// True when the braces of a text match, not counting those in strings and comments.
bool bracesMatch(std::string_view text);

} // namespace meshcast::tidy
