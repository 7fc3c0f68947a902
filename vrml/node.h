#pragma once

#include "vrml/field_table.h"
#include "vrml/names.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <memory_resource>
#include <new>
#include <span>
#include <utility>

#pragma GCC visibility push(default)

namespace meshcast {

class QvState;
class VrmlInput;

/// The base of all node classes.
class QvNode {
public:
    QvNode(const QvNode&) = delete;
    QvNode& operator=(const QvNode&) = delete;
    virtual ~QvNode() = default;

    /// The fields of the node's class.
    virtual const FieldTable& getFieldTable() const = 0;
    /// What the node does in the walk.
    virtual void traverse(QvState& state) const = 0;
    /// Reads what is between the node's braces.
    virtual bool readBody(VrmlInput& input);

    /// The name given by DEF, made legal; empty without one.
    InternedName nodeName() const { return name_; }

    /// True for the classes of the catalogue.
    bool isBuiltIn() const { return isBuiltIn_; }

protected:
    QvNode() = default;

    enum class UnknownWord {
        kIsError,
        kEndsFields, ///< The word is put back: it begins the first child.
    };
    /// Reads fields as long as names of fields follow.
    bool readFields(VrmlInput& input, UnknownWord policy);

    /// Reads a declaration of fields if the word "fields" follows, and reports a malformed one.
    /// Any other word is put back.
    bool readFieldsDeclaration(VrmlInput& input);

private:
    friend class Scene;

    bool readDeclarations(VrmlInput& input);

    InternedName name_;

protected:
    // Last, so that the first members of a derived class can use its padding.
    bool isBuiltIn_ = true;
};

/// The base of every class of the catalogue: gives all nodes of the class one FieldTable, built
/// from the class's declaration kClass.
template <class Self, class Base = QvNode>
class BuiltIn : public Base {
public:
    const FieldTable& getFieldTable() const override {
        static const FieldTable& table = *new FieldTable(Self::kClass.name, Self::kClass.fields);
        return table;
    }

    /// Whether nodes of the class may own memory besides their own and the scene's.
    static constexpr bool ownsMemory() {
        return std::any_of(Self::kClass.fields.begin(), Self::kClass.fields.end(),
                           [](const FieldInfo& field) { return meshcast::ownsMemory(field.type); });
    }

protected:
    using This = Self;
};

/// The owner of nodes. The tree has only plain pointers, since a node may have several parents.
/// Destroying the pool releases the memory of every node made in it, and destroys those nodes that
/// own memory themselves.
class NodePool {
public:
    NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;
    ~NodePool();

    /// Makes a node. Nodes lie in memory in the order in which they are made, which is the order in
    /// which they are walked.
    template <class Node, class... Arguments>
    Node* make(Arguments&&... arguments) {
        void* const place = memory_.allocate(sizeof(Node), alignof(Node));
        auto* const node = new (place) Node(std::forward<Arguments>(arguments)...);
        if constexpr (Node::ownsMemory()) {
            owners_.push_back(node);
        }
        return node;
    }

    /// Copies a list of nodes; the copy lives as long as the pool.
    std::span<QvNode* const> keep(std::span<QvNode* const> nodes);

private:
    static constexpr std::size_t kFirstBlock = std::size_t(64) * 1024;

    std::pmr::monotonic_buffer_resource memory_{kFirstBlock};
    std::deque<QvNode*> owners_; ///< The nodes that own memory themselves.
};

} // namespace meshcast

#pragma GCC visibility pop
