#pragma once

#pragma GCC visibility push(default)

namespace meshcast {

class ByteSource;
class Diagnostics;
class QvNode;
class Scene;
class VrmlInput;

/// Nodes may be nested to this depth. The limit bounds the stack that reading and walking take,
/// since both recurse.
inline constexpr int kMaxNestingDepth = 10'000;

/// Reads one node with everything in its braces. When no node follows, because the input ends or
/// the next token is no name, succeeds with a null `node`. A failure has been reported when this
/// returns, and ends the whole read.
bool readNode(VrmlInput& input, QvNode*& node);

/// Reads the one top-level node of a scene, which becomes its root. What follows the node is never
/// read. Succeeds without a root when the input holds no node.
bool readScene(VrmlInput& input);
bool readScene(Scene& scene, ByteSource& source, Diagnostics& diagnostics);

} // namespace meshcast

#pragma GCC visibility pop
