#pragma once

#include "tools/geomtool/decoder.h"
#include "vrml/byte_source.h"
#include "vrml/input.h"
#include "vrml/node.h"
#include "vrml/scene_reader.h"

#include <string>
#include <string_view>
#include <vector>

namespace meshcast {

/// A scene read from a text, with its nodes. The header line is put in front of the text.
class ReadScene {
public:
    explicit ReadScene(std::string_view body, std::size_t pieceSize = std::size_t(-1));

    QvNode* root = nullptr;
    bool ok = false;
    std::string messages;

private:
    std::string text_;
    MemorySource source_;
    NodePool nodes_;

public:
    VrmlInput input;
};

/// What a scene becomes.
struct Conversion {
    std::vector<geom_stream::Object> objects;
    std::string bytes;    ///< All of standard output.
    std::string messages; ///< All of standard error.
};

/// Converts a scene text, to which the header line is added. The stream must decode.
Conversion convert(std::string_view body);

/// The same for a text that brings its own header, and whatever comes out.
Conversion convertRaw(std::string_view text);

/// The text of nodes that use a leaf 2 to the power of `levels` times, each level the one below it
/// twice.
std::string doubled(const std::string& leaf, int levels);

/// "VRML read error: MESSAGE" as it is printed for a line.
std::string readErrorText(std::string_view message, int line);

} // namespace meshcast
