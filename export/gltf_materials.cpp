#include "export/gltf_parts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace meshcast::exporter {

using evaluate::Material;
using evaluate::Model;
using evaluate::Texture;
using evaluate::Vec3;

namespace {

// Constants of the format, equal to those of OpenGL.
constexpr std::uint32_t kRepeat = 10497, kClampToEdge = 33071;
constexpr std::uint32_t kLinear = 9729, kLinearMipmapLinear = 9987;

/// All textures that materials use, sorted.
std::vector<Texture> texturesOf(const Model& model) {
    std::vector<Texture> textures;
    for (const Material& material : model.materials) {
        if (material.texture) {
            textures.push_back(*material.texture);
        }
    }
    std::sort(textures.begin(), textures.end());
    textures.erase(std::unique(textures.begin(), textures.end()), textures.end());
    return textures;
}

void writeMaterial(JsonWriter& json, const Material& material,
                   const std::vector<Texture>& textures) {
    json.beginObject().key("pbrMetallicRoughness").beginObject();
    json.list("baseColorFactor", material.baseColor);
    if (material.texture) {
        const auto found = std::lower_bound(textures.begin(), textures.end(), *material.texture);
        json.key("baseColorTexture").beginObject();
        json.member("index", static_cast<std::size_t>(found - textures.begin())).endObject();
    }
    json.member("metallicFactor", 0U).member("roughnessFactor", material.roughness).endObject();
    if (material.emissive != Vec3{}) {
        json.list("emissiveFactor", material.emissive);
    }
    if (material.isBlended) {
        json.member("alphaMode", "BLEND");
    }
    if (material.isDoubleSided) {
        json.member("doubleSided", true);
    }
    json.key("extensions").beginObject();
    if (material.isUnlit) {
        json.key("KHR_materials_unlit").beginObject().endObject();
    } else {
        json.key("KHR_materials_specular").beginObject();
        if (material.specular == Vec3{}) {
            json.member("specularFactor", 0U);
        } else {
            json.list("specularColorFactor", material.specular);
        }
        json.endObject();
    }
    json.endObject().endObject();
}

void writeTextures(JsonWriter& json, const std::vector<Texture>& textures) {
    writeList(json, "textures", textures, [&json](const Texture& texture) {
        const unsigned sampler = (texture.repeatS ? 0U : 1U) + (texture.repeatT ? 0U : 2U);
        json.beginObject().member("sampler", sampler).member("source", texture.image).endObject();
    });
    writeList(json, "samplers", std::array{0U, 1U, 2U, 3U}, [&json](unsigned sampler) {
        json.beginObject().member("magFilter", kLinear).member("minFilter", kLinearMipmapLinear);
        json.member("wrapS", (sampler & 1U) == 0 ? kRepeat : kClampToEdge);
        json.member("wrapT", (sampler & 2U) == 0 ? kRepeat : kClampToEdge).endObject();
    });
}

void writeImages(JsonWriter& json, const Model& model, const GltfLayout& layout,
                 const GltfNames& names) {
    json.key("images").beginArray();
    for (std::size_t i = 0; i < model.images.size(); ++i) {
        const evaluate::Image& image = model.images[i];
        json.beginObject();
        if (!image.name.empty()) {
            json.member("name", std::string_view(image.name));
        }
        if (names.imageUris.empty()) {
            json.member("bufferView", layout.imageViewNumber(i));
            json.member("mimeType",
                        image.type == evaluate::Image::Type::kPng ? "image/png" : "image/jpeg");
        } else {
            json.member("uri", std::string_view(names.imageUris[i]));
        }
        json.endObject();
    }
    json.endArray();
}

} // namespace

void writeMaterialParts(JsonWriter& json, const Model& model, const GltfLayout& layout,
                        const GltfNames& names) {
    const std::vector<Texture> textures = texturesOf(model);
    writeList(json, "materials", model.materials,
              [&](const Material& material) { writeMaterial(json, material, textures); });
    if (!textures.empty()) {
        writeTextures(json, textures);
        writeImages(json, model, layout, names);
    }
}

} // namespace meshcast::exporter
