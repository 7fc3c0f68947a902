#pragma once

#include "vrml/nodes.h"

#include <cstdint>

#pragma GCC visibility push(default)

namespace meshcast {

class QvState;
enum class QvElementKind : std::uint8_t;
enum class QvElementType : std::int32_t;

/// Which of the properties that its children add end with a group.
enum class GroupScope : std::uint8_t {
    kNothing,    ///< None: they apply after the group too.
    kTransforms, ///< Only transforms.
    kAll,        ///< All of them.
};

/// Receives every shape that a walk reaches, with the state that holds the properties in force
/// there. A visitor that needs more, such as groups and properties, overrides the functions that do
/// nothing here.
class ShapeVisitor {
public:
    virtual ~ShapeVisitor() = default;

    virtual void visit(const QvAsciiText& shape, const QvState& state) = 0;
    virtual void visit(const QvCone& shape, const QvState& state) = 0;
    virtual void visit(const QvCube& shape, const QvState& state) = 0;
    virtual void visit(const QvCylinder& shape, const QvState& state) = 0;
    virtual void visit(const QvIndexedFaceSet& shape, const QvState& state) = 0;
    virtual void visit(const QvIndexedLineSet& shape, const QvState& state) = 0;
    virtual void visit(const QvPointSet& shape, const QvState& state) = 0;
    virtual void visit(const QvSphere& shape, const QvState& state) = 0;
    virtual void visit(const QvWWWInline& shape, const QvState& state) = 0;

    /// The walk has reached a texture. Called so that its image can be prepared.
    virtual void prepareTexture(const QvTexture2& texture) = 0;

    /// The walk enters a group. Return false to leave out the group with its children; leaveGroup
    /// is not called then.
    virtual bool enterGroup(const QvGroup& /*group*/, GroupScope /*scope*/) { return true; }
    /// The walk has left the group that it entered last.
    virtual void leaveGroup(const QvGroup& /*group*/) {}
    /// The walk has reached a property. Its kind and type tell the class of the node.
    virtual void addProperty(const QvNode& /*node*/, QvElementKind /*kind*/,
                             QvElementType /*type*/) {}
    /// The walk is about to leave a Switch, after the child that the Switch chooses, if any. A
    /// visitor may walk other children here.
    virtual void leaveSwitch(const QvSwitch& /*group*/, QvState& /*state*/) {}
    /// The walk has reached an Info node.
    virtual void passInfo(const QvInfo& /*info*/) {}
    /// The walk has reached a node of an unknown class, and leaves it out.
    virtual void passUnknown(const QvUnknownNode& /*node*/) {}
};

} // namespace meshcast

#pragma GCC visibility pop
