#pragma once

#include "vrml/field_table.h"
#include "vrml/names.h"

#include <cstddef>
#include <memory_resource>
#include <new>
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
    friend class NodePool;
    friend class Scene;

    bool readDeclarations(VrmlInput& input);

    InternedName name_;
    QvNode* nextInPool_ = nullptr;

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

protected:
    using This = Self;
};

/// The owner of nodes. The tree has only plain pointers, since a node may have several parents.
/// Destroying the pool destroys every node made in it.
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
        node->nextInPool_ = newest_;
        newest_ = node;
        return node;
    }

private:
    static constexpr std::size_t kFirstBlock = std::size_t(64) * 1024;

    std::pmr::monotonic_buffer_resource memory_{kFirstBlock};
    QvNode* newest_ = nullptr;
};

} // namespace meshcast

#pragma GCC visibility pop
