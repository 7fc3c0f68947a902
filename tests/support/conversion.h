#pragma once

#include "convert/convert.h"
#include "geom_stream/record_reader.h"
#include "tests/support/memory_sink.h"
#include "vrml/byte_source.h"
#include "vrml/input.h"
#include "vrml/nodes.h"
#include "vrml/scene.h"

#include <string>
#include <string_view>
#include <vector>

namespace meshcast {

/// A scene read from a text, in pieces of a given size. The header line is added before the text.
class ReadScene {
public:
    explicit ReadScene(std::string_view body, std::size_t pieceSize = std::size_t(-1));

    /// The root, which must be of the given class.
    template <class Node>
    Node& root() {
        return dynamic_cast<Node&>(*scene.root);
    }
    /// A child of the root, which must be a group. The child must be of the given class.
    template <class Node>
    const Node& child(std::int32_t index) {
        return dynamic_cast<const Node&>(*root<QvGroup>().getChild(index));
    }

    Scene scene;
    bool ok = false;
    std::string messages;
};

/// The result of a conversion.
struct Conversion {
    std::vector<geom_stream::Object> objects;
    std::string bytes;
    std::string printed; ///< The text printed between the records.
    std::string messages;
};

/// Converts a scene text, to which the header line is added.
Conversion convert(std::string_view body, const ConvertOptions& options = {});

/// The same for a text with its own header.
Conversion convertWhole(std::string_view text, const ConvertOptions& options = {});

/// A scene text that uses a leaf 2 to the power of `levels` times: each level uses the one below it
/// twice.
std::string doubled(const std::string& leaf, int levels);

/// "VRML read error: MESSAGE" as it is printed for a line.
std::string readErrorText(std::string_view message, int line);

} // namespace meshcast
