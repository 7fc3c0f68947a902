#include "export/gltf_json.h"

#include "export/json_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace meshcast::exporter {

using evaluate::Camera;
using evaluate::Geometry;
using evaluate::Instance;
using evaluate::Light;
using evaluate::Material;
using evaluate::Matrix;
using evaluate::Mesh;
using evaluate::Model;
using evaluate::Primitive;
using evaluate::Texture;
using evaluate::Topology;
using evaluate::Vec3;

namespace {

// Numbers of the format, which are those of OpenGL.
constexpr std::uint32_t kUnsignedShort = 5123, kUnsignedInt = 5125, kFloat = 5126;
constexpr std::uint32_t kVertexBuffer = 34962, kIndexBuffer = 34963;
constexpr std::uint32_t kRepeat = 10497, kClampToEdge = 33071;
constexpr std::uint32_t kLinear = 9729, kLinearMipmapLinear = 9987;

bool holdsIndices(ListView view) {
    return view == ListView::kIndices || view == ListView::kShortIndices;
}

/// The JSON object of a file, a method for each of its members.
class GltfDocument {
public:
    GltfDocument(std::string& text, const Model& model, const GltfLayout& layout,
                 const GltfNames& names, bool isForReaders)
        : json_(text), model_(model), layout_(layout), names_(names), textures_(texturesOf(model)) {
        json_.breakLinesTo(isForReaders ? 2 : 0);
    }

    void write();

private:
    static std::vector<Texture> texturesOf(const Model& model);

    /// Writes a list, or nothing where there would be nothing in it: lists may not be empty.
    template <typename Items, typename Write>
    void writeList(std::string_view name, const Items& items, Write write) {
        if (std::size(items) == 0) {
            return;
        }
        json_.key(name).beginArray();
        for (const auto& item : items) {
            write(item);
        }
        json_.endArray();
    }
    void writeAsset();
    void writeExtensions();
    void writeScene();
    void writeNodes();
    void writeBufferViews();
    void writeAccessor(const GltfAccessor& accessor);
    void writeMaterial(const Material& material);
    void writePrimitive(const Primitive& primitive);
    void writeTextures();
    void writeCamera(const Camera& camera);
    void writeLight(const Light& light);

    JsonWriter json_;
    const Model& model_;
    const GltfLayout& layout_;
    const GltfNames& names_;
    std::vector<Texture> textures_; ///< All that materials use, sorted.
};

std::vector<Texture> GltfDocument::texturesOf(const Model& model) {
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

void GltfDocument::writeAsset() {
    json_.key("asset").beginObject().member("version", "2.0").member("generator", "meshcast");
    if (!model_.infos.empty()) {
        json_.key("extras").beginObject().list("info", model_.infos).endObject();
    }
    json_.endObject();
}

void GltfDocument::writeExtensions() {
    const auto anyMaterial = [this](auto is) {
        return std::any_of(model_.materials.begin(), model_.materials.end(), is);
    };
    std::vector<std::string_view> used;
    if (anyMaterial([](const Material& material) { return material.isUnlit; })) {
        used.emplace_back("KHR_materials_unlit");
    }
    if (anyMaterial([](const Material& material) { return !material.isUnlit; })) {
        used.emplace_back("KHR_materials_specular");
    }
    if (!model_.lights.empty()) {
        used.emplace_back("KHR_lights_punctual");
    }
    if (used.empty()) {
        return;
    }
    json_.list("extensionsUsed", used);
    if (!model_.lights.empty()) {
        json_.key("extensions").beginObject().key("KHR_lights_punctual").beginObject();
        writeList("lights", model_.lights, [this](const Light& light) { writeLight(light); });
        json_.endObject().endObject();
    }
}

void GltfDocument::writeScene() {
    json_.member("scene", 0U).key("scenes").beginArray().beginObject();
    json_.member("name", std::string_view(names_.scene));
    const std::size_t count =
        model_.instances.size() + model_.cameras.size() + model_.lights.size();
    if (count != 0) {
        json_.key("nodes").beginArray();
        for (std::size_t node = 0; node < count; ++node) {
            json_.value(node);
        }
        json_.endArray();
    }
    json_.endObject().endArray();
}

void GltfDocument::writeNodes() {
    if (model_.instances.empty() && model_.cameras.empty() && model_.lights.empty()) {
        return;
    }
    const auto beginNode = [this](const std::string& name, const Matrix& matrix) {
        json_.beginObject();
        if (!name.empty()) {
            json_.member("name", std::string_view(name));
        }
        Matrix unmoved = matrix;
        const Vec3 translation = {matrix[12], matrix[13], matrix[14]};
        std::copy(evaluate::kIdentity.begin() + 12, evaluate::kIdentity.begin() + 15,
                  unmoved.begin() + 12);
        if (unmoved != evaluate::kIdentity) {
            json_.list("matrix", matrix);
        } else if (translation != Vec3{}) {
            json_.list("translation", translation);
        }
    };
    json_.key("nodes").beginArray();
    for (const Instance& instance : model_.instances) {
        beginNode(instance.name, instance.matrix);
        json_.member("mesh", instance.mesh);
        if (instance.url) {
            json_.key("extras").beginObject();
            json_.member("url", std::string_view(model_.urls[*instance.url])).endObject();
        }
        json_.endObject();
    }
    for (std::size_t i = 0; i < model_.cameras.size(); ++i) {
        beginNode(model_.cameras[i].name, model_.cameras[i].matrix);
        json_.member("camera", i).endObject();
    }
    for (std::size_t i = 0; i < model_.lights.size(); ++i) {
        beginNode(model_.lights[i].name, model_.lights[i].matrix);
        json_.key("extensions").beginObject().key("KHR_lights_punctual").beginObject();
        json_.member("light", i).endObject().endObject().endObject();
    }
    json_.endArray();
}

void GltfDocument::writeBufferViews() {
    json_.key("bufferViews").beginArray();
    const auto beginView = [this](const Span& span) {
        json_.beginObject().member("buffer", 0U);
        json_.member("byteOffset", span.offset).member("byteLength", span.length);
    };
    for (std::size_t i = 0; i < kListViewCount; ++i) {
        if (layout_.views[i].length == 0) {
            continue;
        }
        beginView(layout_.views[i]);
        if (holdsIndices(static_cast<ListView>(i))) {
            json_.member("target", kIndexBuffer);
        } else {
            json_.member("byteStride", kElementSizes[i]).member("target", kVertexBuffer);
        }
        json_.endObject();
    }
    for (const Span& image : layout_.images) {
        beginView(image);
        json_.endObject();
    }
    json_.endArray();
}

void GltfDocument::writeAccessor(const GltfAccessor& accessor) {
    constexpr std::array<std::string_view, kListViewCount> kTypes = {
        "VEC3", "VEC3", "VEC4", "VEC3", "VEC2", "SCALAR", "SCALAR"};
    json_.beginObject().member("bufferView", layout_.viewNumber(accessor.view));
    json_.member("byteOffset", accessor.offset);
    json_.member("componentType", accessor.view == ListView::kShortIndices ? kUnsignedShort
                                  : accessor.view == ListView::kIndices    ? kUnsignedInt
                                                                           : kFloat);
    json_.member("count", accessor.count);
    json_.member("type", kTypes[static_cast<std::size_t>(accessor.view)]);
    if (accessor.view == ListView::kPositions) {
        const std::vector<Vec3>& positions = model_.geometries[accessor.geometry].positions;
        Vec3 lowest = positions.front(), highest = lowest;
        for (const Vec3& position : positions) {
            for (std::size_t i = 0; i < 3; ++i) {
                lowest[i] = std::min(lowest[i], position[i]);
                highest[i] = std::max(highest[i], position[i]);
            }
        }
        json_.list("min", lowest).list("max", highest);
    }
    json_.endObject();
}

void GltfDocument::writePrimitive(const Primitive& primitive) {
    const GeometryAccessors& accessors = layout_.geometries[primitive.geometry];
    json_.beginObject().key("attributes").beginObject();
    json_.member("POSITION", accessors.positions);
    const auto attribute = [this](std::string_view name, const std::optional<std::size_t>& list) {
        if (list) {
            json_.member(name, *list);
        }
    };
    attribute("NORMAL", accessors.normals);
    attribute("COLOR_0", accessors.colors);
    attribute("TEXCOORD_0", accessors.uvs);
    json_.endObject();
    json_.member("indices", layout_.indexAccessor(primitive));
    json_.member("material", primitive.material);
    // Points are 0, lines 1, and triangles are what there is without a word.
    const Topology topology = model_.geometries[primitive.geometry].topology;
    if (topology != Topology::kTriangles) {
        json_.member("mode", topology == Topology::kLines ? 1U : 0U);
    }
    json_.endObject();
}

void GltfDocument::writeMaterial(const Material& material) {
    json_.beginObject().key("pbrMetallicRoughness").beginObject();
    json_.list("baseColorFactor", material.baseColor);
    if (material.texture) {
        const auto found = std::lower_bound(textures_.begin(), textures_.end(), *material.texture);
        json_.key("baseColorTexture").beginObject();
        json_.member("index", static_cast<std::size_t>(found - textures_.begin())).endObject();
    }
    json_.member("metallicFactor", 0U).member("roughnessFactor", material.roughness).endObject();
    if (material.emissive != Vec3{}) {
        json_.list("emissiveFactor", material.emissive);
    }
    if (material.isBlended) {
        json_.member("alphaMode", "BLEND");
    }
    if (material.isDoubleSided) {
        json_.member("doubleSided", true);
    }
    json_.key("extensions").beginObject();
    if (material.isUnlit) {
        json_.key("KHR_materials_unlit").beginObject().endObject();
    } else {
        json_.key("KHR_materials_specular").beginObject();
        if (material.specular == Vec3{}) {
            json_.member("specularFactor", 0U);
        } else {
            json_.list("specularColorFactor", material.specular);
        }
        json_.endObject();
    }
    json_.endObject().endObject();
}

void GltfDocument::writeTextures() {
    if (textures_.empty()) {
        return;
    }
    writeList("textures", textures_, [this](const Texture& texture) {
        const unsigned sampler = (texture.repeatS ? 0U : 1U) + (texture.repeatT ? 0U : 2U);
        json_.beginObject().member("sampler", sampler).member("source", texture.image).endObject();
    });
    writeList("samplers", std::array{0U, 1U, 2U, 3U}, [this](unsigned sampler) {
        json_.beginObject().member("magFilter", kLinear).member("minFilter", kLinearMipmapLinear);
        json_.member("wrapS", (sampler & 1U) == 0 ? kRepeat : kClampToEdge);
        json_.member("wrapT", (sampler & 2U) == 0 ? kRepeat : kClampToEdge).endObject();
    });
    json_.key("images").beginArray();
    for (std::size_t i = 0; i < model_.images.size(); ++i) {
        const evaluate::Image& image = model_.images[i];
        json_.beginObject();
        if (!image.name.empty()) {
            json_.member("name", std::string_view(image.name));
        }
        if (names_.imageUris.empty()) {
            json_.member("bufferView", layout_.imageViewNumber(i));
            json_.member("mimeType",
                         image.type == evaluate::Image::Type::kPng ? "image/png" : "image/jpeg");
        } else {
            json_.member("uri", std::string_view(names_.imageUris[i]));
        }
        json_.endObject();
    }
    json_.endArray();
}

void GltfDocument::writeCamera(const Camera& camera) {
    const float aspectRatio = camera.aspectRatio > 0 ? camera.aspectRatio : 1;
    json_.beginObject();
    json_.member("type", camera.isPerspective ? "perspective" : "orthographic");
    if (camera.isPerspective) {
        json_.key("perspective").beginObject().member("yfov", camera.heightAngle);
        if (camera.aspectRatio > 0) {
            json_.member("aspectRatio", camera.aspectRatio);
        }
    } else {
        json_.key("orthographic").beginObject();
        json_.member("xmag", camera.height / 2 * aspectRatio).member("ymag", camera.height / 2);
    }
    json_.member("znear", camera.nearDistance).member("zfar", camera.farDistance);
    json_.endObject().endObject();
}

void GltfDocument::writeLight(const Light& light) {
    constexpr std::array<const char*, 3> kTypes = {"directional", "point", "spot"};
    json_.beginObject().member("type", kTypes[static_cast<std::size_t>(light.kind)]);
    if (!light.name.empty()) {
        json_.member("name", std::string_view(light.name));
    }
    json_.list("color", light.color).member("intensity", light.intensity);
    if (light.kind == Light::Kind::kSpot) {
        json_.key("spot").beginObject().member("innerConeAngle", light.innerAngle);
        json_.member("outerConeAngle", light.outerAngle).endObject();
    }
    json_.endObject();
}

void GltfDocument::write() {
    json_.beginObject();
    writeAsset();
    writeExtensions();
    writeScene();
    writeNodes();
    writeList("meshes", model_.meshes, [this](const Mesh& mesh) {
        json_.beginObject();
        writeList("primitives", mesh.primitives,
                  [this](const Primitive& primitive) { writePrimitive(primitive); });
        json_.endObject();
    });
    writeList("materials", model_.materials,
              [this](const Material& material) { writeMaterial(material); });
    writeTextures();
    writeList("cameras", model_.cameras, [this](const Camera& camera) { writeCamera(camera); });
    writeList("accessors", layout_.accessors,
              [this](const GltfAccessor& accessor) { writeAccessor(accessor); });
    if (layout_.size != 0) {
        writeBufferViews();
        json_.key("buffers").beginArray().beginObject().member("byteLength", layout_.size);
        if (!names_.bufferUri.empty()) {
            json_.member("uri", std::string_view(names_.bufferUri));
        }
        json_.endObject().endArray();
    }
    json_.endObject();
}

} // namespace

std::string gltfJson(const Model& model, const GltfLayout& layout, const GltfNames& names,
                     bool isForReaders) {
    std::string text;
    GltfDocument(text, model, layout, names, isForReaders).write();
    return text;
}

} // namespace meshcast::exporter
