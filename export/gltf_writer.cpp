#include "evaluate/utf8.h"
#include "export/gltf_buffer.h"
#include "export/gltf_json.h"
#include "export/gltf_layout.h"
#include "export/image_files.h"
#include "export/writers.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

// A binary glTF file has two chunks: its JSON and its buffer (glTF 2.0, section 4).

namespace meshcast::exporter {

using evaluate::Model;

namespace {

constexpr std::uint64_t kMagic = 0x46546C67, kVersion = 2;
constexpr std::uint64_t kJsonChunk = 0x4E4F534A, kBinaryChunk = 0x004E4942;
constexpr std::uint64_t kHeaderSize = 12, kChunkHeaderSize = 8;

void appendNumber(std::string& bytes, std::uint64_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(static_cast<unsigned char>(number >> shift & 0xFFU));
    }
}

/// A file's name as a relative reference of RFC 3986.
std::string uriOf(const std::string& name) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                             (c >= 'a' && c <= 'z') || c == '-' || c == '.' || c == '_' || c == '~';
        if (isPlain) {
            uri += c;
        } else {
            uri.append("%").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 0xFU]);
        }
    }
    return uri;
}

/// The data that the files of an export share.
struct Document {
    Model model;
    GltfLayout layout;
    std::string json;
};

void writeBinaryFile(ByteSink& sink, Document& document, std::uint64_t size) {
    std::string head;
    for (const std::uint64_t number :
         {kMagic, kVersion, size, std::uint64_t(document.json.size()), kJsonChunk}) {
        appendNumber(head, number);
    }
    sink.write(head);
    sink.write(document.json);
    std::string().swap(document.json);
    if (document.layout.size != 0) {
        head.clear();
        appendNumber(head, document.layout.size);
        appendNumber(head, kBinaryChunk);
        sink.write(head);
        writeBuffer(sink, document.model, document.layout);
    }
}

Exported writeBinary(Model&& model, const Options& options) {
    const auto document = std::make_shared<Document>();
    document->layout = layOut(model, true);
    std::string& json = document->json;
    json = gltfJson(model, document->layout, {evaluate::toUtf8(options.name), "", {}}, false);
    json.append((4 - json.size() % 4) % 4, ' ');
    document->model = std::move(model);
    const std::uint64_t size =
        kHeaderSize + kChunkHeaderSize + json.size() +
        (document->layout.size == 0 ? 0 : kChunkHeaderSize + document->layout.size);
    Exported exported;
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        exported.failure = "it would be longer than the 4 GiB that a binary glTF file may have";
    } else {
        exported.files.push_back(
            {"", [document, size](ByteSink& sink) { writeBinaryFile(sink, *document, size); }});
    }
    return exported;
}

Exported writeText(Model&& model, const Options& options) {
    const auto document = std::make_shared<Document>();
    document->layout = layOut(model, false);
    GltfNames names;
    names.scene = evaluate::toUtf8(options.name);
    std::vector<File> beside;
    if (document->layout.size != 0) {
        beside.push_back({options.name + ".bin", [document](ByteSink& sink) {
                              writeBuffer(sink, document->model, document->layout);
                          }});
        names.bufferUri = uriOf(beside.back().name);
    }
    for (std::size_t i = 0; i < model.images.size(); ++i) {
        std::string name = imageFileName(model.images[i], i, options);
        names.imageUris.push_back(uriOf(name));
        beside.push_back(imageFile(model.images[i], std::move(name)));
    }
    Exported exported;
    exported.files.push_back(fileOf("", gltfJson(model, document->layout, names, true) + "\n"));
    std::move(beside.begin(), beside.end(), std::back_inserter(exported.files));
    document->model = std::move(model);
    return exported;
}

} // namespace

Exported writeGltf(Model&& model, bool isBinary, const Options& options) {
    return isBinary ? writeBinary(std::move(model), options) : writeText(std::move(model), options);
}

} // namespace meshcast::exporter
