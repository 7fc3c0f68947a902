#pragma once

#include "tidy/edits.h"
#include "tidy/lexer.h"
#include "tidy/node_class.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// A field whose value is at hand, and what may follow it, by which a value that only looks right
/// is known.
struct ValuePlace {
    /// True for a word with which the node may go on.
    bool mayFollow(std::string_view word) const;
    const ValueType& type() const { return field.type; }

    Lexer& lexer;
    EditList& edits;
    const NodeClass& owner;
    const Field& field;
    const std::function<bool()>& bracesMatch; ///< Of the whole scene, those within words counted.
};

/// What was taken for a value.
struct PassedValue {
    explicit operator bool() const { return end != nullptr; }

    const char* end = nullptr; ///< Null when there is no value that could be kept.
    std::size_t count = 1;     ///< Of the values of a list.
};

/// Passes over the value of a field at `p`. What the reader takes stays as it is; anything else is
/// mended by one edit. Null, and no edit, when nothing can be made of it.
PassedValue passValue(const ValuePlace& place, const char* p);

// The kinds of values. Each first looks for what the reader takes, then for what may be meant.
PassedValue passNumbers(const ValuePlace& place, const char* p);
PassedValue mendList(const ValuePlace& place, const char* first);
PassedValue passBool(const ValuePlace& place, const char* p);
PassedValue passEnum(const ValuePlace& place, const char* p);
PassedValue passMask(const ValuePlace& place, const char* first);
PassedValue passString(const ValuePlace& place, const char* p);
PassedValue passImage(const ValuePlace& place, const char* first);

/// True when the node may go on at `end`, which a value has been taken up to.
bool maySeparate(const ValuePlace& place, const char* end);

/// Writes `meant` for [first, end), and says so.
PassedValue rewrite(const ValuePlace& place, const char* first, const char* end,
                    std::string_view meant);

/// The word of an enumeration that another spelling or dialect means; empty when none or more than
/// one could be meant.
std::string_view meantWord(const Enumeration* words, std::string_view written);

} // namespace meshcast::tidy
