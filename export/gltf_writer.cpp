#include "evaluate/utf8.h"
#include "export/gltf_buffer.h"
#include "export/gltf_json.h"
#include "export/gltf_layout.h"
#include "export/writers.h"

#include <cstdint>
#include <limits>
#include <utility>

// A binary glTF file is its JSON and its buffer, each in a chunk: section 4 of glTF's 2.0
// specification.

namespace meshcast::exporter {

using evaluate::Image;
using evaluate::Model;

namespace {

constexpr std::uint32_t kMagic = 0x46546C67, kVersion = 2;
constexpr std::uint32_t kJsonChunk = 0x4E4F534A, kBinaryChunk = 0x004E4942;
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

Exported writeBinary(Model&& model, const Options& options) {
    const GltfLayout layout = layOut(model, true);
    std::string json = gltfJson(model, layout, {evaluate::toUtf8(options.name), "", {}}, false);
    json.append((4 - json.size() % 4) % 4, ' ');
    const std::uint64_t size = kHeaderSize + kChunkHeaderSize + json.size() +
                               (layout.size == 0 ? 0 : kChunkHeaderSize + layout.size);
    Exported exported;
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        exported.failure = "it would be longer than the 4 GiB that a binary glTF file may have";
        return exported;
    }
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(size));
    appendNumber(bytes, kMagic);
    appendNumber(bytes, kVersion);
    appendNumber(bytes, size);
    appendNumber(bytes, json.size());
    appendNumber(bytes, kJsonChunk);
    bytes += json;
    std::string().swap(json);
    if (layout.size != 0) {
        appendNumber(bytes, layout.size);
        appendNumber(bytes, kBinaryChunk);
        appendBuffer(bytes, model, layout);
    }
    exported.files.push_back({"", std::move(bytes)});
    return exported;
}

Exported writeText(Model&& model, const Options& options) {
    const GltfLayout layout = layOut(model, false);
    Exported exported;
    exported.files.emplace_back();
    GltfNames names;
    names.scene = evaluate::toUtf8(options.name);
    if (layout.size != 0) {
        exported.files.push_back({options.name + ".bin", ""});
        names.bufferUri = uriOf(exported.files.back().name);
    }
    for (std::size_t i = 0; i < model.images.size(); ++i) {
        const char* const extension = model.images[i].type == Image::Type::kPng ? ".png" : ".jpg";
        File file{options.name, {}};
        file.name.append("-").append(std::to_string(i + 1)).append(extension);
        names.imageUris.push_back(uriOf(file.name));
        exported.files.push_back(std::move(file));
    }
    exported.files.front().bytes = gltfJson(model, layout, names, true) + "\n";
    std::size_t next = 1;
    if (layout.size != 0) {
        std::string& buffer = exported.files[next++].bytes;
        buffer.reserve(static_cast<std::size_t>(layout.size));
        appendBuffer(buffer, model, layout);
    }
    for (Image& image : model.images) {
        exported.files[next++].bytes.assign(image.bytes.begin(), image.bytes.end());
        std::vector<std::uint8_t>().swap(image.bytes);
    }
    return exported;
}

} // namespace

Exported writeGltf(Model&& model, bool isBinary, const Options& options) {
    return isBinary ? writeBinary(std::move(model), options) : writeText(std::move(model), options);
}

} // namespace meshcast::exporter
