#include "evaluate/utf8.h"
#include "export/assimp_formats.h"
#include "export/assimp_mending.h"
#include "export/assimp_scene.h"
#include "export/image_files.h"
#include "export/writers.h"
#include "io/files.h"

#include <assimp/DefaultIOSystem.h>
#include <assimp/Exporter.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

// Files are made in memory: assimp reports success when a disk is full.

namespace meshcast::exporter {

using evaluate::Model;
using evaluate::Note;

namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t(4) << 30;

/// "1 camera is left out: a file of the format stl holds none".
void noteLoss(Exported& exported, std::size_t count, std::string_view thing,
              std::string_view things, const AssimpFormat& format) {
    if (count != 0) {
        std::string text = std::to_string(count);
        text.append(" ").append(count == 1 ? thing : things).append(count == 1 ? " is" : " are");
        text.append(" left out: ").append(format.format.extension).append(" files hold none");
        exported.notes.push_back({Note::Kind::kUnsupported, std::move(text), ""});
    }
}

void noteLosses(Exported& exported, const Model& model, const AssimpScene& built,
                const AssimpFormat& format) {
    noteLoss(exported, built.lines, "line", "lines", format);
    noteLoss(exported, built.points, "point", "points", format);
    noteLoss(exported, format.hasTextures ? 0 : model.images.size(), "texture", "textures", format);
    noteLoss(exported, format.hasColors ? 0 : model.materials.size(), "material", "materials",
             format);
    noteLoss(exported, format.hasColors ? built.coloredMeshes : 0, "set of vertex colours",
             "sets of vertex colours", format);
    noteLoss(exported, model.cameras.size(), "camera", "cameras", format);
    noteLoss(exported, model.lights.size(), "light", "lights", format);
    noteLoss(exported, model.urls.size(), "link", "links", format);
}

/// The files of a list of blobs. The first is the main file.
void addFiles(Exported& exported, const aiExportDataBlob& first, const AssimpFormat& format) {
    for (const aiExportDataBlob* blob = &first; blob != nullptr; blob = blob->next) {
        std::string bytes(static_cast<const char*>(blob->data), blob->size);
        if (blob == &first) {
            mendFile(bytes, format.format.extension);
        }
        exported.files.push_back(
            fileOf(blob == &first ? "" : blob->name.C_Str(), std::move(bytes)));
    }
}

void exportToMemory(Exported& exported, Assimp::Exporter& exporter, const aiScene& scene,
                    const AssimpFormat& format, const Options& options) {
    Assimp::ExportProperties properties;
    properties.SetPropertyString(AI_CONFIG_EXPORT_BLOB_NAME, options.name);
    const aiExportDataBlob* const blob = exporter.ExportToBlob(&scene, format.id, 0U, &properties);
    if (blob == nullptr) {
        exported.failure = exporter.GetErrorString();
    } else {
        addFiles(exported, *blob, format);
    }
}

/// A file system that reports every file as missing, since one writer refuses to replace files.
class NoFiles final : public Assimp::DefaultIOSystem {
public:
    bool Exists(const char* /*name*/) const override { return false; }
};

/// Exports with a writer that always opens a file by its name, which is that of a file in memory.
void exportByName(Exported& exported, Assimp::Exporter& exporter, const aiScene& scene,
                  const AssimpFormat& format) {
    const io::Descriptor file(::memfd_create("export", MFD_CLOEXEC));
    const std::string name = "/proc/self/fd/" + std::to_string(file.number());
    exporter.SetIOHandler(new NoFiles); // The exporter deletes it.
    if (!file.isOpen() || exporter.Export(&scene, format.id, name) != aiReturn_SUCCESS) {
        exported.failure = file.isOpen() ? exporter.GetErrorString() : io::lastError().message();
        return;
    }
    auto bytes = io::readFile(name, kLargestFile);
    if (const auto* const error = std::get_if<std::error_code>(&bytes)) {
        exported.failure = error->message();
        return;
    }
    exported.files.push_back(fileOf("", std::get<std::string>(std::move(bytes))));
}

} // namespace

Exported writeWithAssimp(Model&& model, const AssimpFormat& format, const Options& options) {
    Exported exported;
    std::vector<std::string> imageNames;
    for (std::size_t i = 0; i < model.images.size(); ++i) {
        imageNames.push_back(imageFileName(model.images[i], i, options));
    }
    const AssimpScene built = assimpSceneOf(model, format, imageNames);
    if (built.scene == nullptr) {
        exported.failure = "it would have more than " + std::to_string(kMostPlacedVertices) +
                           " vertices, for which formats that share no meshes have no room";
        return exported;
    }
    noteLosses(exported, model, built, format);
    try {
        Assimp::Exporter exporter;
        if (format.isWrittenByName) {
            exportByName(exported, exporter, *built.scene, format);
        } else {
            exportToMemory(exported, exporter, *built.scene, format, options);
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        exported.failure = error.what();
    }
    if (format.hasTextures) {
        for (std::size_t i = 0; i < model.images.size(); ++i) {
            exported.files.push_back(imageFile(model.images[i], imageNames[i]));
        }
    }
    return exported;
}

} // namespace meshcast::exporter
