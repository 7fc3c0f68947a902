#pragma once

#include "vrml/fields.h"
#include "vrml/node.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace meshcast {

/// A list of children. The list does not own them.
using ChildList = std::vector<QvNode*>;

/// The base of all grouping nodes, and itself the node class "Group".
class QvGroup : public BuiltIn<QvGroup> {
public:
    void traverse(QvState& state) override;
    bool readBody(VrmlInput& input) override;

    virtual const ChildList& getChildList() const { return children_; }
    /// Reads child nodes until none follows.
    virtual bool readChildren(VrmlInput& input);

    std::int32_t getNumChildren() const { return static_cast<std::int32_t>(getChildList().size()); }
    QvNode* getChild(std::int32_t index) const {
        return getChildList()[static_cast<std::size_t>(index)];
    }

    /// What the walk notes at the node.
    struct WalkMarks {
        bool isOpen = false;    ///< The walk is among the node's children.
        bool isRefused = false; ///< An attempt to enter the node has been reported.
    };
    WalkMarks walkMarks;

private:
    ChildList children_;
};

/// A node of a class outside the catalogue, whose body begins by declaring its fields.
class QvUnknownNode final : public QvGroup {
public:
    explicit QvUnknownNode(std::string className);
    ~QvUnknownNode() override;

    /// The table of the newest unknown node, whichever node is asked. Kept: a node's fields are all
    /// read before a nested node can replace the table.
    FieldTable& getFieldTable() override;
    void traverse(QvState& state) override;

    const std::string& className() const { return className_; }

    /// Makes a field that the input declares; false when there is no such type.
    bool adoptField(InternedName typeName, InternedName fieldName);

private:
    std::string className_;
    FieldTable table_;
    std::vector<std::unique_ptr<QvField>> fields_;
};

} // namespace meshcast
