#pragma once

#include "vrml/nodes.h"

#include <cstdint>

namespace meshcast {

class QvState;
enum class QvElementKind : std::uint8_t;
enum class QvElementType : std::int32_t;

/// What a group keeps to itself of the properties that its children add.
enum class GroupScope : std::uint8_t {
    kNothing,    ///< They count after the group too.
    kTransforms, ///< Transforms end with the group.
    kAll,        ///< All of them end with the group.
};

/// What a walk is for: every shape that the walk reaches hands itself over, with the state that
/// holds the properties in force there. A visitor that wants to know more of the way to a shape
/// overrides the functions that do nothing here.
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

    /// The walk has put a texture in force: the time to prepare its image.
    virtual void prepareTexture(const QvTexture2& texture) = 0;

    /// The walk enters a group. False leaves the group out, with all that is in it; then there is
    /// no leaveGroup.
    virtual bool enterGroup(const QvGroup& /*group*/, GroupScope /*scope*/) { return true; }
    /// The walk has left the group that it entered last.
    virtual void leaveGroup(const QvGroup& /*group*/) {}
    /// The walk has put a property in force. Its kind and type say of which class the node is.
    virtual void addProperty(const QvNode& /*node*/, QvElementKind /*kind*/,
                             QvElementType /*type*/) {}
    /// The walk is in a Switch, and has walked the child that the Switch chooses, if any. A visitor
    /// may walk others.
    virtual void leaveSwitch(const QvSwitch& /*group*/, QvState& /*state*/) {}
    /// The walk passes a text for readers.
    virtual void passInfo(const QvInfo& /*info*/) {}
    /// The walk passes a node of an unknown class, and leaves it out.
    virtual void passUnknown(const QvUnknownNode& /*node*/) {}
};

} // namespace meshcast
