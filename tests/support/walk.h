#pragma once

#include "tests/support/conversion.h"
#include "traverse/shape_visitor.h"
#include "traverse/state.h"

namespace meshcast {

/// A visitor that ignores all shapes.
class NoShapes final : public ShapeVisitor {
public:
    void visit(const QvAsciiText& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvCone& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvCube& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvCylinder& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvIndexedFaceSet& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvIndexedLineSet& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvPointSet& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvSphere& /*shape*/, const QvState& /*state*/) override {}
    void visit(const QvWWWInline& /*shape*/, const QvState& /*state*/) override {}
    void prepareTexture(const QvTexture2& /*texture*/) override {}
};

/// A traversal state that tests can inspect, with or without a scene.
struct Walk {
    Walk() : state(shapes, messages) {}
    explicit Walk(const ReadScene& scene) : Walk() { scene.scene.root->traverse(state); }

    NoShapes shapes;
    MessageText messages;
    QvState state;
};

} // namespace meshcast
