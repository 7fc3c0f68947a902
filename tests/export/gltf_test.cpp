#include "tests/export/exported_files.h"
#include "tests/support/glb.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

// The files are read with an independent implementation of glTF.

namespace meshcast::exporter {
namespace {

using evaluate::Camera;
using evaluate::Image;
using evaluate::Light;
using evaluate::Model;
using evaluate::Vec3;
using testing::ElementsAre;
using testing::FloatEq;
using testing::SizeIs;

tinygltf::Model exportedAndLoaded(Model model) {
    const Exported exported = exportTo("glb", std::move(model));
    EXPECT_THAT(exported.files, SizeIs(1));
    return loadedGlb(bytesOf(exported.files[0]));
}

/// The components of all elements of an accessor.
template <typename Number>
std::vector<Number> elements(const tinygltf::Model& model, int number) {
    const tinygltf::Accessor& accessor = model.accessors[static_cast<std::size_t>(number)];
    const tinygltf::BufferView& view =
        model.bufferViews[static_cast<std::size_t>(accessor.bufferView)];
    const int components =
        tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
    EXPECT_EQ(tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType)),
              static_cast<int>(sizeof(Number)));
    const std::size_t size = accessor.count * static_cast<std::size_t>(components);
    EXPECT_LE(accessor.byteOffset + size * sizeof(Number), view.byteLength);
    std::vector<Number> values(size);
    std::memcpy(values.data(), model.buffers[0].data.data() + view.byteOffset + accessor.byteOffset,
                size * sizeof(Number));
    return values;
}

TEST(Gltf, HasTheListsOfTheModel) {
    Model model = triangle();
    model.geometries[0].uvs = {{0, 0}, {1, 0.25F}, {-2, 1}};
    model.geometries[0].colors = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 0.5F, 0.5F}};
    const tinygltf::Model gltf = exportedAndLoaded(model);
    const tinygltf::Primitive& primitive = gltf.meshes.at(0).primitives.at(0);
    const auto& lists = primitive.attributes;
    EXPECT_THAT(elements<float>(gltf, lists.at("POSITION")),
                ElementsAre(0, 0, 0, 1, 0, 0, 0, 2, 0));
    EXPECT_THAT(elements<float>(gltf, lists.at("NORMAL")), ElementsAre(0, 0, 1, 0, 0, 1, 0, 0, 1));
    EXPECT_THAT(elements<float>(gltf, lists.at("TEXCOORD_0")), ElementsAre(0, 1, 1, 0.75F, -2, 0));
    EXPECT_THAT(elements<float>(gltf, lists.at("COLOR_0")),
                ElementsAre(1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 0.5F, 0.5F));
    EXPECT_THAT(elements<std::uint16_t>(gltf, primitive.indices), ElementsAre(0, 1, 2));
    const auto& positions = gltf.accessors[static_cast<std::size_t>(lists.at("POSITION"))];
    EXPECT_THAT(positions.minValues, ElementsAre(0, 0, 0));
    EXPECT_THAT(positions.maxValues, ElementsAre(1, 2, 0));

    model.geometries[0].colors[2][3] = 1;
    const tinygltf::Model opaque = exportedAndLoaded(model);
    EXPECT_THAT(elements<float>(opaque, opaque.meshes[0].primitives[0].attributes.at("COLOR_0")),
                ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 0.5F));
}

TEST(Gltf, UsesShortIndicesBelow65535) {
    for (const std::size_t count : {65'535U, 65'536U}) {
        Model model = triangle();
        model.geometries[0].normals.clear();
        model.geometries[0].positions.assign(count, {1, 2, 3});
        const auto last = static_cast<std::uint32_t>(count - 1);
        model.geometries[0].indices = {0, last, 7};
        const tinygltf::Model gltf = exportedAndLoaded(model);
        const int indices = gltf.meshes[0].primitives[0].indices;
        if (count == 65'535) {
            EXPECT_THAT(elements<std::uint16_t>(gltf, indices), ElementsAre(0, 65'534, 7));
        } else {
            EXPECT_THAT(elements<std::uint32_t>(gltf, indices), ElementsAre(0, 65'535, 7));
        }
    }
}

TEST(Gltf, SharesListsBetweenMeshes) {
    Model model = triangle();
    model.geometries.push_back(model.geometries[0]);
    model.geometries[1].topology = evaluate::Topology::kLines;
    model.geometries[1].indices = {0, 1, 1, 2, 2, 0};
    model.materials.resize(3);
    model.materials[1].baseColor = {0, 0, 1, 1};
    model.meshes = {{{{0, 0, 3, 0}}}, {{{0, 0, 3, 1}, {1, 2, 4, 2}, {1, 0, 2, 0}}}};
    model.instances.resize(2);
    model.instances[1].mesh = 1;
    const tinygltf::Model gltf = exportedAndLoaded(model);
    const auto& first = gltf.meshes[0].primitives;
    const auto& second = gltf.meshes[1].primitives;
    EXPECT_EQ(first[0].attributes, second[0].attributes);
    EXPECT_EQ(first[0].indices, second[0].indices);
    EXPECT_EQ(second[0].material, 1);
    EXPECT_EQ(second[1].attributes, second[2].attributes);
    EXPECT_THAT(elements<std::uint16_t>(gltf, second[1].indices), ElementsAre(1, 2, 2, 0));
    EXPECT_THAT(elements<std::uint16_t>(gltf, second[2].indices), ElementsAre(0, 1));
    EXPECT_EQ(second[1].mode, TINYGLTF_MODE_LINE);
    EXPECT_THAT(gltf.accessors, SizeIs(7)) << "two lists each, and three ranges of indices";
    EXPECT_THAT(gltf.bufferViews, SizeIs(3)) << "positions, normals, short indices";
}

TEST(Gltf, DescribesMaterials) {
    Model model = triangle();
    model.images.resize(1);
    model.images[0].name = "wood.png";
    // The smallest PNG: one grey pixel.
    model.images[0].bytes = {0x89, 'P', 'N',  'G',  0x0D, 0x0A, 0x1A, 0x0A, 0,    0, 0, 0x0D,
                             'I',  'H', 'D',  'R',  0,    0,    0,    1,    0,    0, 0, 1,
                             8,    0,   0,    0,    0,    0x3A, 0x7E, 0x9B, 0x55, 0, 0, 0,
                             0x0A, 'I', 'D',  'A',  'T',  0x78, 0x9C, 0x63, 0x68, 0, 0, 0,
                             0x82, 0,   0x81, 0x77, 0xCD, 0x72, 0xB6, 0,    0,    0, 0, 'I',
                             'E',  'N', 'D',  0xAE, 0x42, 0x60, 0x82};
    model.geometries[0].uvs.assign(3, {0, 0});
    model.materials.resize(2);
    evaluate::Material& shiny = model.materials[0];
    shiny.baseColor = {0.5F, 0.25F, 1, 0.5F};
    shiny.emissive = {0, 0.5F, 0};
    shiny.specular = {1, 0.5F, 0};
    shiny.roughness = 0.25F;
    shiny.isDoubleSided = false;
    shiny.isBlended = true;
    shiny.texture = {0, true, false};
    model.materials[1].isUnlit = true;
    model.meshes[0].primitives.push_back({0, 0, 3, 1});
    const tinygltf::Model gltf = exportedAndLoaded(model);

    const tinygltf::Material& first = gltf.materials.at(0);
    EXPECT_THAT(first.pbrMetallicRoughness.baseColorFactor, ElementsAre(0.5, 0.25, 1, 0.5));
    EXPECT_EQ(first.pbrMetallicRoughness.roughnessFactor, 0.25);
    EXPECT_EQ(first.pbrMetallicRoughness.metallicFactor, 0);
    EXPECT_THAT(first.emissiveFactor, ElementsAre(0, 0.5, 0));
    EXPECT_EQ(first.alphaMode, "BLEND");
    EXPECT_FALSE(first.doubleSided);
    const auto& specular = first.extensions.at("KHR_materials_specular").Get("specularColorFactor");
    EXPECT_EQ(specular.Get(1).GetNumberAsDouble(), 0.5);
    const auto& texture = gltf.textures.at(
        static_cast<std::size_t>(first.pbrMetallicRoughness.baseColorTexture.index));
    const auto& sampler = gltf.samplers.at(static_cast<std::size_t>(texture.sampler));
    EXPECT_EQ(sampler.wrapS, TINYGLTF_TEXTURE_WRAP_REPEAT);
    EXPECT_EQ(sampler.wrapT, TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE);
    EXPECT_EQ(gltf.images.at(static_cast<std::size_t>(texture.source)).width, 1);

    const tinygltf::Material& second = gltf.materials.at(1);
    EXPECT_TRUE(second.extensions.contains("KHR_materials_unlit"));
    EXPECT_TRUE(second.doubleSided);
    EXPECT_THAT(gltf.extensionsUsed, ElementsAre("KHR_materials_unlit", "KHR_materials_specular"));

    model.materials.assign(2, {});
    const tinygltf::Model plain = exportedAndLoaded(model);
    EXPECT_EQ(plain.materials[0]
                  .extensions.at("KHR_materials_specular")
                  .Get("specularFactor")
                  .GetNumberAsInt(),
              0)
        << "a surface without highlights";
}

TEST(Gltf, PlacesInstancesCamerasAndLights) {
    Model model = triangle();
    model.urls = {"http://example.org/?a=<b>"};
    model.infos = {"made by hand"};
    model.instances.resize(3);
    model.instances[0].name = "House/Wall \"north\"";
    model.instances[1].matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    model.instances[1].url = 0;
    model.instances[2].matrix = {-2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 9, 1};
    model.cameras.resize(2);
    model.cameras[0] = {"front", evaluate::kIdentity, true, 0.5F, 0, 1.5F, 0.1F, 100};
    model.cameras[1] = {"plan", evaluate::kIdentity, false, 0, 8, 1.5F, 1, 2};
    model.lights.resize(1);
    model.lights[0].kind = Light::Kind::kSpot;
    model.lights[0].intensity = 0.75F;
    model.lights[0].innerAngle = 0.25F;
    model.lights[0].outerAngle = 0.5F;
    const tinygltf::Model gltf = exportedAndLoaded(model);

    ASSERT_THAT(gltf.nodes, SizeIs(6));
    EXPECT_THAT(gltf.scenes.at(0).nodes, ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_EQ(gltf.nodes[0].name, "House/Wall \"north\"");
    EXPECT_TRUE(gltf.nodes[0].matrix.empty() && gltf.nodes[0].translation.empty());
    EXPECT_THAT(gltf.nodes[1].translation, ElementsAre(5, 6, 7));
    EXPECT_EQ(gltf.nodes[1].extras.Get("url").Get<std::string>(), "http://example.org/?a=<b>");
    EXPECT_THAT(gltf.nodes[2].matrix, ElementsAre(-2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 9, 1));
    EXPECT_EQ(gltf.nodes[4].camera, 1);
    EXPECT_EQ(gltf.cameras[0].perspective.zfar, 100);
    EXPECT_EQ(gltf.cameras[0].perspective.aspectRatio, 1.5);
    EXPECT_EQ(gltf.cameras[1].orthographic.xmag, 6);
    EXPECT_EQ(gltf.cameras[1].orthographic.ymag, 4);
    EXPECT_TRUE(gltf.nodes[5].extensions.contains("KHR_lights_punctual"));
    EXPECT_EQ(gltf.lights.at(0).type, "spot");
    EXPECT_EQ(gltf.lights[0].intensity, 0.75);
    EXPECT_EQ(gltf.lights[0].spot.outerConeAngle, 0.5);
    EXPECT_EQ(gltf.asset.extras.Get("info").Get(0).Get<std::string>(), "made by hand");
}

TEST(Gltf, OfNoShapesIsValid) {
    const tinygltf::Model gltf = exportedAndLoaded({});
    EXPECT_TRUE(gltf.scenes.at(0).nodes.empty() && gltf.buffers.empty());
}

TEST(Gltf, InTextFormNamesItsOtherFiles) {
    Model model = triangle();
    model.images.resize(2);
    model.images[0].bytes = {1, 2, 3};
    model.images[1].type = Image::Type::kJpeg;
    model.geometries[0].uvs.assign(3, {0, 0});
    model.materials[0].texture = {1, true, true};
    const Exported exported = exportTo("gltf", model,
                                       "Wohnzimmer gr\xC3\xBC"
                                       "n");
    ASSERT_THAT(exported.files, SizeIs(4));
    EXPECT_EQ(exported.files[1].name, "Wohnzimmer gr\xC3\xBC"
                                      "n.bin");
    EXPECT_EQ(exported.files[2].name, "Wohnzimmer gr\xC3\xBC"
                                      "n-image-1.png");
    EXPECT_EQ(exported.files[3].name, "Wohnzimmer gr\xC3\xBC"
                                      "n-image-2.jpg");
    EXPECT_EQ(bytesOf(exported.files[2]), "\x01\x02\x03");
    const std::string json = bytesOf(exported.files[0]);
    for (const char* uri : {"Wohnzimmer%20gr%C3%BCn.bin", "Wohnzimmer%20gr%C3%BCn-image-2.jpg"}) {
        EXPECT_NE(json.find(std::string("\"uri\":\"") + uri + "\""), std::string::npos) << json;
    }
    // 3 x (position, normal, uv) and 3 short indices, to a multiple of 4.
    EXPECT_EQ(bytesOf(exported.files[1]).size(), 3 * (12U + 12 + 8) + 8);
}

} // namespace
} // namespace meshcast::exporter
