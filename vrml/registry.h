#pragma once

#include "vrml/names.h"

#include <span>
#include <string_view>

namespace meshcast {

class NodePool;
class QvNode;

/// One class of the registry.
struct NodeClass {
    std::string_view name; ///< As the scene language spells it.
    QvNode* (*create)(NodePool& nodes);
};

/// All classes that a scene may name, each made with its defaults.
std::span<const NodeClass> nodeClasses();

/// Makes a node of a class; null when the registry has no class of that name.
QvNode* createNode(NodePool& nodes, InternedName className);

} // namespace meshcast
