#pragma once

#include "vrml/nodes.h"

namespace meshcast {

class QvState;

/// What a walk is for: every shape that the walk reaches hands itself over, with the state that
/// holds the properties in force there.
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
};

} // namespace meshcast
