#pragma once

namespace meshcast {

class ByteSource;
class Diagnostics;
class QvNode;
class Scene;
class VrmlInput;

/// Nodes may stand inside one another to this depth. It bounds the stack that reading, and walking
/// after it, take: both recurse.
inline constexpr int kMaxNestingDepth = 10'000;

/// Reads one node with everything in its braces. `node` becomes null when none follows, which is a
/// success at the end of the input or where no word stands. Every failure has been reported; it
/// ends the whole read.
bool readNode(VrmlInput& input, QvNode*& node);

/// Reads the one top-level node of a scene, which becomes its root; what follows it is never looked
/// at. There is no root, without a failure, when the input holds no node.
bool readScene(VrmlInput& input);
bool readScene(Scene& scene, ByteSource& source, Diagnostics& diagnostics);

} // namespace meshcast
