#pragma once

#include "tools/vrmltidy/values.h"

#include <cstddef>
#include <string_view>

namespace meshcast::tidy {

/// A value in the making.
class Value {
public:
    Value(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
          Reporter& reporter)
        : cursor_(cursor), type_(type), place_(place), text_(text), reporter_(reporter) {}

    /// As tidyValue.
    bool tidy();

private:
    // Each passes over a value that the reader takes, or mends what may be meant for one.
    bool passNumbers();
    bool passOne(const char*& p) const;
    bool mendNumbers();
    bool passString();
    bool keepFirstString();
    bool runsOver(std::string_view string) const;
    // words.cpp
    bool passBool();
    bool mendBool();
    bool passEnum();
    bool mendEnum();
    bool passMask();
    bool mendMask();
    // image.cpp
    bool passImage();
    bool mendImage();

    /// Accepts what stands up to `end` if the node may go on there.
    bool accept(const char* end);
    /// Writes `meant` for everything up to `end`.
    bool rewrite(const char* end, std::string_view meant);

    Cursor& cursor_;
    const ValueType& type_;
    const FieldPlace& place_;
    EditedText& text_;
    Reporter& reporter_;
};

/// The part of the source between two places.
inline std::string_view between(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

/// The string in quotes or else the word at a place.
StringToken quotedOrWord(const Cursor& place);

/// Where the brackets end that a value stands in which is none of a list.
const char* endOfBrackets(Cursor inside);

} // namespace meshcast::tidy
