#pragma once

#include "tools/vrmltidy/catalogue.h"
#include "tools/vrmltidy/cursor.h"
#include "tools/vrmltidy/edited_text.h"
#include "tools/vrmltidy/reporter.h"

#include <functional>
#include <string_view>

namespace meshcast::tidy {

/// What may stand behind a field's value, by which a value that only looks right is known.
struct FieldPlace {
    /// True for a word with which the node may go on.
    bool mayFollow(std::string_view word) const;

    const ClassInfo& owner;
    std::string_view fieldName;
    /// Tells whether the braces of the whole scene match when those within words count.
    const std::function<bool()>& bracesMatch;
};

/// Takes the value of a field, from behind its name, and mends it in `text`: what the reader takes
/// is passed over, and anything else is looked at word by word. False, with nothing changed and
/// the cursor where it was, when there is no value that could be kept.
bool tidyValue(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
               Reporter& reporter);

/// The same for a list of numbers that the reader does not take, or for a bare value of one; in
/// list.cpp.
bool tidyList(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
              Reporter& reporter);

} // namespace meshcast::tidy
