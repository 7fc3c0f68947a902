#include "export/gltf_json.h"

#include "export/gltf_parts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace meshcast::exporter {

using evaluate::Camera;
using evaluate::Instance;
using evaluate::Light;
using evaluate::Material;
using evaluate::Matrix;
using evaluate::Model;
using evaluate::Vec3;

namespace {

void writeAsset(JsonWriter& json, const Model& model) {
    json.key("asset").beginObject().member("version", "2.0").member("generator", "meshcast");
    if (!model.infos.empty()) {
        json.key("extras").beginObject().list("info", model.infos).endObject();
    }
    json.endObject();
}

void writeLight(JsonWriter& json, const Light& light) {
    constexpr std::array<const char*, 3> kTypes = {"directional", "point", "spot"};
    json.beginObject().member("type", kTypes[static_cast<std::size_t>(light.kind)]);
    if (!light.name.empty()) {
        json.member("name", std::string_view(light.name));
    }
    json.list("color", light.color).member("intensity", light.intensity);
    if (light.kind == Light::Kind::kSpot) {
        json.key("spot").beginObject().member("innerConeAngle", light.innerAngle);
        json.member("outerConeAngle", light.outerAngle).endObject();
    }
    json.endObject();
}

void writeExtensions(JsonWriter& json, const Model& model) {
    const auto anyMaterial = [&model](auto is) {
        return std::any_of(model.materials.begin(), model.materials.end(), is);
    };
    std::vector<std::string_view> used;
    if (anyMaterial([](const Material& material) { return material.isUnlit; })) {
        used.emplace_back("KHR_materials_unlit");
    }
    if (anyMaterial([](const Material& material) { return !material.isUnlit; })) {
        used.emplace_back("KHR_materials_specular");
    }
    if (!model.lights.empty()) {
        used.emplace_back("KHR_lights_punctual");
    }
    if (used.empty()) {
        return;
    }
    json.list("extensionsUsed", used);
    if (!model.lights.empty()) {
        json.key("extensions").beginObject().key("KHR_lights_punctual").beginObject();
        writeList(json, "lights", model.lights,
                  [&json](const Light& light) { writeLight(json, light); });
        json.endObject().endObject();
    }
}

void writeScene(JsonWriter& json, const Model& model, const std::string& name) {
    json.member("scene", 0U).key("scenes").beginArray().beginObject();
    json.member("name", std::string_view(name));
    const std::size_t count = model.instances.size() + model.cameras.size() + model.lights.size();
    if (count != 0) {
        json.key("nodes").beginArray();
        for (std::size_t node = 0; node < count; ++node) {
            json.value(node);
        }
        json.endArray();
    }
    json.endObject().endArray();
}

void writeNodes(JsonWriter& json, const Model& model) {
    if (model.instances.empty() && model.cameras.empty() && model.lights.empty()) {
        return;
    }
    const auto beginNode = [&json](const std::string& name, const Matrix& matrix) {
        json.beginObject();
        if (!name.empty()) {
            json.member("name", std::string_view(name));
        }
        Matrix unmoved = matrix;
        const Vec3 translation = {matrix[12], matrix[13], matrix[14]};
        std::copy(evaluate::kIdentity.begin() + 12, evaluate::kIdentity.begin() + 15,
                  unmoved.begin() + 12);
        if (unmoved != evaluate::kIdentity) {
            json.list("matrix", matrix);
        } else if (translation != Vec3{}) {
            json.list("translation", translation);
        }
    };
    json.key("nodes").beginArray();
    for (const Instance& instance : model.instances) {
        beginNode(instance.name, instance.matrix);
        json.member("mesh", instance.mesh);
        if (instance.url) {
            json.key("extras").beginObject();
            json.member("url", std::string_view(model.urls[*instance.url])).endObject();
        }
        json.endObject();
    }
    for (std::size_t i = 0; i < model.cameras.size(); ++i) {
        beginNode(model.cameras[i].name, model.cameras[i].matrix);
        json.member("camera", i).endObject();
    }
    for (std::size_t i = 0; i < model.lights.size(); ++i) {
        beginNode(model.lights[i].name, model.lights[i].matrix);
        json.key("extensions").beginObject().key("KHR_lights_punctual").beginObject();
        json.member("light", i).endObject().endObject().endObject();
    }
    json.endArray();
}

void writeCamera(JsonWriter& json, const Camera& camera) {
    const float aspectRatio = camera.aspectRatio > 0 ? camera.aspectRatio : 1;
    json.beginObject();
    json.member("type", camera.isPerspective ? "perspective" : "orthographic");
    if (camera.isPerspective) {
        json.key("perspective").beginObject().member("yfov", camera.heightAngle);
        if (camera.aspectRatio > 0) {
            json.member("aspectRatio", camera.aspectRatio);
        }
    } else {
        json.key("orthographic").beginObject();
        json.member("xmag", camera.height / 2 * aspectRatio).member("ymag", camera.height / 2);
    }
    json.member("znear", camera.nearDistance).member("zfar", camera.farDistance);
    json.endObject().endObject();
}

} // namespace

std::string gltfJson(const Model& model, const GltfLayout& layout, const GltfNames& names,
                     bool isForReaders) {
    // Growing a text of many megabytes step by step is slow.
    constexpr std::size_t kUsualElement = 160;
    std::string text;
    text.reserve(kUsualElement * (layout.accessors.size() + model.materials.size() +
                                  model.meshes.size() + model.instances.size()));
    JsonWriter json(text);
    json.breakLinesTo(isForReaders ? 2 : 0);
    json.beginObject();
    writeAsset(json, model);
    writeExtensions(json, model);
    writeScene(json, model, names.scene);
    writeNodes(json, model);
    writeMaterialParts(json, model, layout, names);
    writeList(json, "cameras", model.cameras,
              [&json](const Camera& camera) { writeCamera(json, camera); });
    writeGeometryParts(json, model, layout, names.bufferUri);
    json.endObject();
    return text;
}

} // namespace meshcast::exporter
