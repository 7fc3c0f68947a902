#pragma once

#include "vrml/names.h"

#include <memory>
#include <span>
#include <string_view>

namespace meshcast {

class QvNode;

/// One class of the registry.
struct NodeClass {
    std::string_view name; ///< As the scene language spells it.
    std::unique_ptr<QvNode> (*create)();
};

/// All classes that a scene may name, each made with its defaults.
std::span<const NodeClass> nodeClasses();

/// Makes a node of a class; null when the registry has no class of that name.
std::unique_ptr<QvNode> createNode(InternedName className);

} // namespace meshcast
