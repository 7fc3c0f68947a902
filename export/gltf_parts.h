#pragma once

#include "evaluate/model.h"
#include "export/gltf_json.h"
#include "export/gltf_layout.h"
#include "export/json_writer.h"

#include <iterator>
#include <string>
#include <string_view>

// Functions that write the members of the JSON object of a glTF file.

namespace meshcast::exporter {

/// Writes a list by calling `write` for each item. Writes nothing for an empty list, which glTF
/// does not allow.
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

/// Writes "meshes", "accessors", "bufferViews" and "buffers".
void writeGeometryParts(JsonWriter& json, const evaluate::Model& model, const GltfLayout& layout,
                        const std::string& bufferUri);

/// Writes "materials", "textures", "samplers" and "images".
void writeMaterialParts(JsonWriter& json, const evaluate::Model& model, const GltfLayout& layout,
                        const GltfNames& names);

} // namespace meshcast::exporter
