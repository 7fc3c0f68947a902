#pragma once

#include "evaluate/model.h"
#include "export/gltf_json.h"
#include "export/gltf_layout.h"
#include "export/json_writer.h"

#include <iterator>
#include <string>
#include <string_view>

// The members of the JSON object of a glTF file, a file for each group of them.

namespace meshcast::exporter {

/// Writes a list with `write` for each item, or nothing where there is none: lists of glTF may not
/// be empty.
template <typename Items, typename Write>
void writeList(JsonWriter& json, std::string_view name, const Items& items, Write write) {
    if (std::size(items) == 0) {
        return;
    }
    json.key(name).beginArray();
    for (const auto& item : items) {
        write(item);
    }
    json.endArray();
}

/// "meshes", and what they lie in: "accessors", "bufferViews", "buffers".
void writeGeometryParts(JsonWriter& json, const evaluate::Model& model, const GltfLayout& layout,
                        const std::string& bufferUri);

/// "materials", and what they show: "textures", "samplers", "images".
void writeMaterialParts(JsonWriter& json, const evaluate::Model& model, const GltfLayout& layout,
                        const GltfNames& names);

} // namespace meshcast::exporter
