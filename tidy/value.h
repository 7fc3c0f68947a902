#pragma once

#include "tidy/edits.h"
#include "tidy/lexer.h"
#include "tidy/node_class.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// A field whose value is being parsed. Also says what may follow the value, which shows when a
/// value only looks right.
struct ValuePlace {
    /// True when the node may continue with this word.
    bool mayFollow(std::string_view word) const;
    const ValueType& type() const { return field.type; }

    Lexer& lexer;
    EditList& edits;
    const NodeClass& owner;
    const Field& field;
    const std::function<bool()>&
        bracesMatch; ///< Whether the braces of the whole scene match, counting those inside words.
};

/// The result of parsing a value.
struct PassedValue {
    explicit operator bool() const { return end != nullptr; }

    const char* end = nullptr; ///< Null when there is no usable value.
    std::size_t count = 1;     ///< The number of values of a list.
};

/// Parses the value of a field at `p`. A value that the reader accepts stays as it is; any other is
/// repaired by one edit. Returns null and makes no edit when the value cannot be repaired.
PassedValue passValue(const ValuePlace& place, const char* p);

// One function for each kind of value. Each first tries what the reader accepts, then what may be
// meant.
PassedValue passNumbers(const ValuePlace& place, const char* p);
PassedValue mendList(const ValuePlace& place, const char* first);
PassedValue passBool(const ValuePlace& place, const char* p);
PassedValue passEnum(const ValuePlace& place, const char* p);
PassedValue passMask(const ValuePlace& place, const char* first);
PassedValue passString(const ValuePlace& place, const char* p);
PassedValue passImage(const ValuePlace& place, const char* first);

/// True when the node may continue at `end`, the end of a value.
bool maySeparate(const ValuePlace& place, const char* end);

/// Replaces [first, end) by `meant` and reports it.
PassedValue rewrite(const ValuePlace& place, const char* first, const char* end,
                    std::string_view meant);

/// The word of an enumeration that `written` means in another spelling or dialect. Empty when no
/// word, or more than one, could be meant.
std::string_view meantWord(const Enumeration* words, std::string_view written);

} // namespace meshcast::tidy
