#pragma once

#include "vrml/field_table.h"
#include "vrml/names.h"

#include <cstddef>
#include <memory_resource>
#include <new>
#include <string_view>
#include <utility>

namespace meshcast {

class QvField;
class QvState;
class VrmlInput;

/// The base of all node classes.
class QvNode {
public:
    QvNode(const QvNode&) = delete;
    QvNode& operator=(const QvNode&) = delete;
    /// Takes the node's name off the NameDictionary.
    virtual ~QvNode();

    /// The fields of the node's class.
    virtual FieldTable& getFieldTable() = 0;
    /// What the node does in the walk.
    virtual void traverse(QvState& state) = 0;
    /// Reads what stands between the node's braces.
    virtual bool readBody(VrmlInput& input);

    /// The name given by DEF, made legal; empty without one.
    InternedName nodeName() const { return name_; }
    /// Names the node, and enters it in the NameDictionary under the legal form of the name.
    void setName(InternedName name);

    /// True for the classes of the catalogue.
    bool isBuiltIn() const { return isBuiltIn_; }

    /// Called by a field under construction; declares it if the node is the first of its class.
    void declareField(std::string_view name, const QvField& field) {
        if (isFirstOfClass_) {
            getFieldTable().addField(name, *this, field);
        }
    }

protected:
    QvNode() = default;

    enum class UnknownWord {
        kIsError,
        kEndsFields, ///< The word is put back: it begins the first child.
    };
    /// Reads fields as long as their names follow.
    bool readFields(VrmlInput& input, UnknownWord policy);

    /// Reads a declaration of fields if the word "fields" follows, and reports a malformed one.
    /// Any other word is put back.
    bool readFieldsDeclaration(VrmlInput& input);

private:
    friend class NodePool;

    bool readDeclarations(VrmlInput& input);
    void removeName();

    InternedName name_;
    QvNode* nextInPool_ = nullptr;

protected:
    // Last, so that the first members of a derived class share their word.
    bool isBuiltIn_ = true;
    bool isFirstOfClass_ = false;
};

/// What every class of the catalogue derives from: its own FieldTable, built by the fields of the
/// first node of the class.
template <class Self, class Base = QvNode>
class BuiltIn : public Base {
public:
    FieldTable& getFieldTable() override { return shared().table; }

protected:
    BuiltIn() {
        this->isFirstOfClass_ = !shared().constructed;
        shared().constructed = true;
    }

private:
    struct Shared {
        FieldTable table;
        bool constructed = false;
    };
    static Shared& shared() {
        static Shared& instance = *new Shared;
        return instance;
    }
};

/// The owner of nodes. The tree has only plain pointers, since a node may stand under several
/// parents; destroying the pool destroys every node made in it.
class NodePool {
public:
    NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;
    ~NodePool();

    /// Makes a node. Nodes lie behind one another in the order in which they are made, which is
    /// that of the walk.
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
