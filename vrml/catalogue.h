#pragma once

#include "vrml/field_info.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace meshcast {

class InternedName;
class QvNode;
class Scene;

/// What the nodes of a class do in the walk.
enum class NodeKind : std::uint8_t {
    kShape,    ///< Is geometry.
    kProperty, ///< Is in force for the shapes after it.
    kGroup,    ///< Holds children.
    kInfo,     ///< Nothing: text for readers of the file.
};

/// One class of the catalogue.
struct ClassInfo {
    std::string_view name; ///< As the scene language spells it.
    NodeKind kind;
    bool isGroup; ///< Children may stand in its body.
    std::span<const FieldInfo> fields;
    QvNode* (*create)(Scene& scene);
};

/// All classes that a scene may name, in the order in which they are looked for.
std::span<const ClassInfo> nodeClasses();

/// The class of that name, or null.
const ClassInfo* findClass(InternedName name);

/// Makes a node of a class, with its defaults; null when the catalogue has no class of that name.
QvNode* createNode(Scene& scene, InternedName className);

} // namespace meshcast
