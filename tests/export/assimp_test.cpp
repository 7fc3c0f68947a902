#include "tests/export/exported_files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace meshcast::exporter {
namespace {

using evaluate::Model;
using evaluate::Topology;
using evaluate::Vec3;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A temporary folder, which is removed by the destructor.
class Folder {
public:
    Folder() { path = ::mkdtemp(name_.data()); }
    ~Folder() { std::filesystem::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path path;

private:
    std::string name_ = testing::TempDir() + "export.XXXXXX";
};

/// The contents of exported files, reduced to what every format keeps.
struct Contents {
    double area = 0;
    std::vector<Vec3> normals; ///< Of the triangles, computed from their winding.
    double lowestX = 1e9, highestX = -1e9;
    std::size_t lines = 0, points = 0;
    std::set<std::string> names, textures;
    std::vector<Vec3> diffuse;
};

void addMesh(Contents& found, const aiMesh& mesh, const aiMatrix4x4& matrix) {
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        std::vector<aiVector3D> corners;
        for (unsigned j = 0; j < face.mNumIndices; ++j) {
            corners.push_back(matrix * mesh.mVertices[face.mIndices[j]]);
            const auto x = static_cast<double>(corners.back().x);
            found.lowestX = std::min(found.lowestX, x);
            found.highestX = std::max(found.highestX, x);
        }
        if (corners.size() == 3) {
            aiVector3D normal = (corners[1] - corners[0]) ^ (corners[2] - corners[0]);
            found.area += static_cast<double>(normal.Length()) / 2;
            normal.Normalize();
            found.normals.push_back({normal.x, normal.y, normal.z});
        } else {
            (corners.size() == 2 ? found.lines : found.points) += 1;
        }
    }
}

/// Writes the files of an export to a folder and reads the main one.
Contents readBack(const Exported& exported, std::string_view extension) {
    const Folder folder;
    for (const File& file : exported.files) {
        const std::string name = file.name.empty() ? "scene." + std::string(extension) : file.name;
        std::ofstream(folder.path / name, std::ios::binary) << bytesOf(file);
    }
    Contents found;
    Assimp::Importer importer;
    const aiScene* const scene =
        importer.ReadFile(folder.path / ("scene." + std::string(extension)), 0);
    EXPECT_NE(scene, nullptr) << extension << ": " << importer.GetErrorString();
    if (scene == nullptr) {
        return found;
    }
    const std::function<void(const aiNode&, const aiMatrix4x4&)> walk =
        [&](const aiNode& node, const aiMatrix4x4& above) {
            const aiMatrix4x4 matrix = above * node.mTransformation;
            if (node.mNumMeshes != 0) {
                found.names.insert(node.mName.C_Str());
            }
            for (unsigned i = 0; i < node.mNumMeshes; ++i) {
                addMesh(found, *scene->mMeshes[node.mMeshes[i]], matrix);
            }
            for (unsigned i = 0; i < node.mNumChildren; ++i) {
                walk(*node.mChildren[i], matrix);
            }
        };
    walk(*scene->mRootNode, {});
    for (unsigned i = 0; i < scene->mNumMeshes; ++i) {
        const aiMaterial& material = *scene->mMaterials[scene->mMeshes[i]->mMaterialIndex];
        aiColor3D color;
        aiString texture;
        if (material.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS) {
            found.diffuse.push_back({color.r, color.g, color.b});
        }
        if (material.GetTexture(aiTextureType_DIFFUSE, 0, &texture) == aiReturn_SUCCESS) {
            found.textures.insert(texture.C_Str());
        }
    }
    return found;
}

std::vector<std::string> texts(const std::vector<evaluate::Note>& notes) {
    std::vector<std::string> found(notes.size());
    std::transform(notes.begin(), notes.end(), found.begin(),
                   [](const evaluate::Note& note) { return note.text; });
    return found;
}

class PlacedFormats : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(All, PlacedFormats,
                         testing::Values("glb", "obj", "ply", "stl", "dae", "x3d", "3mf"),
                         [](const auto& test) { return "Format" + std::string(test.param); });

// One triangle at its own position, and one mirrored at x = 10 and twice as wide.
TEST_P(PlacedFormats, KeepPositionsAndWinding) {
    Model model = triangle();
    model.instances.resize(2);
    model.instances[1].matrix = {-2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 0, 0, 1};
    const Contents found = readBack(exportTo(GetParam(), std::move(model)), GetParam());
    const double unit = std::string(GetParam()) == "3mf" ? 1000 : 1; // Millimetres.
    EXPECT_NEAR(found.area, (1 + 2) * unit * unit, 1e-3 * unit);
    EXPECT_NEAR(found.lowestX, 0, 1e-6);
    EXPECT_NEAR(found.highestX, 10 * unit, 1e-6);
    if (std::string(GetParam()) != "glb") { // A glTF reader reverses mirrored faces.
        EXPECT_THAT(found.normals, SizeIs(2));
        EXPECT_THAT(found.normals, Each(ElementsAre(0, 0, 1)));
    }
}

TEST_P(PlacedFormats, AcceptEmptyModels) {
    const Exported exported = exportTo(GetParam(), {});
    EXPECT_GT(bytesOf(exported.files.at(0)).size(), 80U);
    EXPECT_THAT(exported.notes, IsEmpty());
}

TEST(MeshFormats, NameShapesAndShowTheirColorsAndTextures) {
    Model model = triangle();
    model.geometries[0].uvs = {{0, 0}, {1, 0}, {0, 1}};
    model.materials[0].baseColor = {0.21404114F, 1, 0, 1}; // 0.5, 1, 0 in sRGB
    model.images.resize(1);
    model.images[0].bytes = {1, 2, 3};
    model.materials[0].texture = {0, true, false};
    model.instances.resize(2);
    model.instances[0].name = "House/wall <1> & \"2\"";
    const Contents found = readBack(exportTo("obj", model), "obj");
    EXPECT_THAT(found.names, ElementsAre("House/wall__1_____2_", "shape_2"));
    EXPECT_THAT(found.textures, ElementsAre("scene-image-1.png"));
    EXPECT_NEAR(found.diffuse.at(0)[0], 0.5, 1e-3);
    EXPECT_THAT(readBack(exportTo("dae", model), "dae").textures, ElementsAre("scene-image-1.png"));
    const Exported obj = exportTo("obj", model, "my scene");
    EXPECT_THAT(bytesOf(obj.files[0]), HasSubstr("mtllib my scene.mtl\n"));
    EXPECT_EQ(obj.files[1].name, "my scene.mtl");
    EXPECT_THAT(bytesOf(obj.files[1]), HasSubstr("my scene-image-1.png"));
    EXPECT_EQ(bytesOf(obj.files[2]), "\x01\x02\x03");
}

TEST(MeshFormats, HoldVertexColorsInSrgb) {
    Model model = triangle();
    model.geometries.push_back(model.geometries[0]);
    model.geometries[0].colors = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 0.21404114F, 1}};
    model.materials.resize(2);
    model.materials[1].baseColor = {0, 0, 1, 1};
    model.meshes.push_back({{{1, 0, 3, 1}}});
    model.instances.resize(2);
    model.instances[1].mesh = 1;
    const std::string ply = bytesOf(exportTo("ply", model).files[0]);
    EXPECT_THAT(ply, HasSubstr("element vertex 6\n"));
    constexpr std::size_t kVertex = 6 * sizeof(float) + 4;
    std::string colors;
    for (std::size_t i = 1; i <= 6; ++i) {
        colors += ply.substr(ply.find("end_header\n") + 11 + i * kVertex - 4, 4);
    }
    EXPECT_EQ(colors, std::string("\xFF\0\0\xFF\0\xFF\0\xFF\0\0\x80\xFF"
                                  "\0\0\xFF\xFF\0\0\xFF\xFF\0\0\xFF\xFF",
                                  24));
    const std::string obj = bytesOf(exportTo("obj", model).files[0]);
    EXPECT_THAT(obj, HasSubstr("v 1 0 0 0 1 0\n"));
    EXPECT_THAT(obj, HasSubstr("v 1 0 0 1 1 1\n")) << "blue comes from the material";
}

TEST(MeshFormats, HaveNoTimestampsAndAreDoubleSided) {
    EXPECT_THAT(bytesOf(exportTo("dae", triangle()).files[0]),
                HasSubstr("<modified>1970-01-01T00:00:00</modified>"));
    EXPECT_THAT(bytesOf(exportTo("x3d", triangle()).files[0]),
                HasSubstr("<IndexedFaceSet solid='false' coordIndex='0 1 2"));
}

TEST(MeshFormats, ReportWhatTheyCannotHold) {
    Model model = triangle();
    for (const Topology topology : {Topology::kLines, Topology::kPoints}) {
        model.geometries.push_back(model.geometries[0]);
        model.geometries.back().topology = topology;
        model.geometries.back().normals.clear();
    }
    model.geometries[1].indices = {0, 1, 1, 2};
    model.meshes[0].primitives.push_back({1, 0, 4, 0});
    model.meshes[0].primitives.push_back({2, 0, 3, 0});
    model.cameras.resize(1);
    model.lights.resize(2);
    const auto lost = [&model](const char* format) { return texts(exportTo(format, model).notes); };
    EXPECT_THAT(lost("glb"), IsEmpty());
    EXPECT_THAT(lost("obj"), ElementsAre("1 camera is left out: obj files hold none",
                                         "2 lights are left out: obj files hold none"));
    EXPECT_THAT(lost("stl"), ElementsAre("2 lines are left out: stl files hold none",
                                         "3 points are left out: stl files hold none",
                                         "1 material is left out: stl files hold none",
                                         "1 camera is left out: stl files hold none",
                                         "2 lights are left out: stl files hold none"));
    const Contents obj = readBack(exportTo("obj", model), "obj");
    EXPECT_EQ(obj.lines, 2U);
    EXPECT_EQ(obj.points, 3U);
    const std::string ply = bytesOf(exportTo("ply", model).files[0]);
    EXPECT_THAT(ply, HasSubstr("element vertex 6\n")) << "points are vertices without faces";
    EXPECT_THAT(ply, HasSubstr("element face 1\n"));
}

} // namespace
} // namespace meshcast::exporter
