#include "traverse/shape_visitor.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

// A shape in the walk hands itself to the visitor of the walk, which is the place to look for what
// becomes of it.

namespace meshcast {

void QvAsciiText::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCone::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCube::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCylinder::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvIndexedFaceSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvIndexedLineSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvPointSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvSphere::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvWWWInline::traverse(QvState& state) const { state.shapes().visit(*this, state); }

} // namespace meshcast
