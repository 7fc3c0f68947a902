#pragma once

#include "vrml/catalogue.h"
#include "vrml/group.h"
#include "vrml/names.h"
#include "vrml/node.h"

#include <concepts>
#include <cstdint>
#include <string_view>
#include <utility>

#pragma GCC visibility push(default)

namespace meshcast {

class Diagnostics;

/// A scene in memory: owns its nodes, its names, the table of its definitions, and its root.
/// Scenes share no mutable state, so each may be read and walked by a thread of its own.
class Scene {
public:
    Scene() : names_(&catalogueNames()) {}
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Makes a node, which lives as long as the scene.
    template <class Node, class... Arguments>
    Node* make(Arguments&&... arguments) {
        Node* const node = nodes_.make<Node>(std::forward<Arguments>(arguments)...);
        if constexpr (std::derived_from<Node, QvGroup>) {
            node->groupNumber_ = groups_++;
        }
        return node;
    }

    /// Copies a list of nodes; the copy lives as long as the scene.
    ChildList keep(ChildList nodes) { return nodes_.keep(nodes); }

    /// The handle of a text, valid as long as the scene.
    InternedName intern(std::string_view text) { return names_.intern(text); }

    /// Names a node, and enters it in the dictionary under the legal form of the name.
    void setName(QvNode& node, InternedName name, Diagnostics& diagnostics);
    /// Removes a node's name from the dictionary; reports a node that is not there under its name.
    void removeName(const QvNode& node, Diagnostics& diagnostics);

    ReferenceTable& references() { return references_; }
    NameDictionary& dictionary() { return dictionary_; }

    /// The top-level node; null until one has been read.
    QvNode* root = nullptr;
    /// What QvUnknownNode::getFieldTable reports; null without an unknown node.
    FieldTable* newestUnknownTable = nullptr;

private:
    NameTable names_;
    ReferenceTable references_;
    NameDictionary dictionary_;
    NodePool nodes_;
    std::uint32_t groups_ = 0;
};

} // namespace meshcast

#pragma GCC visibility pop
