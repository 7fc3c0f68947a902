#pragma once

#include "vrml/field_info.h"
#include "vrml/names.h"

#include <span>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

class QvNode;
class Scene;

/// One class of the catalogue.
struct ClassInfo {
    std::string_view name; ///< As the scene language spells it.
    NodeKind kind;
    bool isGroup; ///< Its body may hold child nodes.
    std::span<const FieldInfo> fields;
    QvNode* (*create)(Scene& scene);
};

/// All classes that a scene may name, in the order in which they are searched.
std::span<const ClassInfo> nodeClasses();

/// The class of that name, or null.
const ClassInfo* findClass(InternedName name);

/// The names that every scene shares: those of the classes and fields, and the words of the
/// grammar. Interned once for the process, and constant.
const NameTable& catalogueNames();

/// The handle of such a name.
InternedName catalogueName(std::string_view text);

} // namespace meshcast

#pragma GCC visibility pop
