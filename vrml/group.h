#pragma once

#include "vrml/fields.h"
#include "vrml/node.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

class Scene;

/// The children of a group, in order. Neither the list nor the group owns them.
using ChildList = std::span<QvNode* const>;

/// The base of all grouping nodes, and itself the node class "Group".
class QvGroup : public BuiltIn<QvGroup> {
public:
    static constexpr auto kClass = declare("Group", NodeKind::kGroup);

    void traverse(QvState& state) const override;
    bool readBody(VrmlInput& input) override;

    virtual ChildList getChildList() const { return {children_, childCount_}; }
    /// Reads child nodes until none follows.
    virtual bool readChildren(VrmlInput& input);

    std::int32_t getNumChildren() const { return static_cast<std::int32_t>(getChildList().size()); }
    const QvNode* getChild(std::int32_t index) const {
        return getChildList()[static_cast<std::size_t>(index)];
    }

    /// The index of the group among all groups of its scene, from 0. Walks use it to keep data
    /// about groups.
    std::uint32_t groupNumber() const { return groupNumber_; }

private:
    friend class Scene;

    /// Takes the children that were read last, from the given place on, as this group's.
    void keepChildren(VrmlInput& input, std::size_t first);

    std::uint32_t groupNumber_ = 0;
    QvNode* const* children_ = nullptr; ///< In the scene's memory.
    std::uint32_t childCount_ = 0;
};

/// A node of a class outside the catalogue, whose body begins by declaring its fields.
class QvUnknownNode final : public QvGroup {
public:
    QvUnknownNode(Scene& scene, InternedName className);

    /// The table of the scene's newest unknown node, whichever node is asked. Kept: this does no
    /// harm, since all fields of a node are read before a nested node can replace the table.
    const FieldTable& getFieldTable() const override;
    void traverse(QvState& state) const override;

    static constexpr bool ownsMemory() { return true; }

    InternedName className() const { return className_; }
    /// The node's own table, with the fields that it has declared.
    const FieldTable& declaredFields() const { return table_; }

    /// Makes a field that the input declares; false when there is no such type.
    bool adoptField(InternedName typeName, InternedName fieldName);

private:
    Scene& scene_;
    InternedName className_;
    FieldTable table_;
    std::vector<OwnedField> fields_;
};

} // namespace meshcast

#pragma GCC visibility pop
