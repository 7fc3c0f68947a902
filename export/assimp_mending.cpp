#include "export/assimp_mending.h"

#include "evaluate/color.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace meshcast::exporter {

namespace {

void fixTime(std::string& bytes) {
    constexpr std::string_view kTime = "1970-01-01T00:00:00";
    for (const std::string_view tag : {"<created>", "<modified>"}) {
        const std::size_t at = bytes.find(tag);
        if (at != std::string::npos) {
            const std::size_t from = at + tag.size();
            bytes.replace(from, bytes.find('<', from) - from, kTime);
        }
    }
}

/// Converts the colours, the last values of each vertex, to bytes.
void packColors(std::string& bytes) {
    constexpr std::string_view kEnd = "end_header\n", kVertices = "element vertex ";
    constexpr std::size_t kColorSize = 4 * sizeof(float);
    const std::size_t header = bytes.find(kEnd), element = bytes.find(kVertices);
    const std::string_view head = std::string_view(bytes).substr(0, header);
    if (header == std::string::npos || element > header ||
        head.find("property uchar red\n") == std::string_view::npos) {
        return;
    }
    std::size_t count = 0;
    std::from_chars(bytes.data() + element + kVertices.size(), bytes.data() + header, count);
    const bool hasNormals = head.find("property float nx\n") != std::string_view::npos;
    const std::size_t before = (hasNormals ? 6 : 3) * sizeof(float);
    std::size_t from = header + kEnd.size(), to = from;
    for (; count > 0 && from + before + kColorSize <= bytes.size(); --count) {
        std::array<float, 4> color{};
        std::memcpy(color.data(), bytes.data() + from + before, kColorSize);
        std::memmove(bytes.data() + to, bytes.data() + from, before);
        from += before + kColorSize;
        to += before;
        for (const float part : color) {
            const long byte = std::lround(evaluate::clampToUnit(part) * 255);
            bytes[to++] = static_cast<char>(static_cast<unsigned char>(byte));
        }
    }
    bytes.erase(to, from - to);
}

void showBothSides(std::string& bytes) {
    constexpr std::string_view kFaces = "<IndexedFaceSet ";
    std::string mended;
    std::size_t from = 0;
    for (std::size_t at = bytes.find(kFaces); at != std::string::npos;
         at = bytes.find(kFaces, from)) {
        mended.append(bytes, from, at + kFaces.size() - from).append("solid='false' ");
        from = at + kFaces.size();
    }
    mended.append(bytes, from);
    bytes = std::move(mended);
}

} // namespace

void mendFile(std::string& bytes, std::string_view extension) {
    if (extension == "dae") {
        fixTime(bytes);
    } else if (extension == "ply") {
        packColors(bytes);
    } else if (extension == "x3d") {
        showBothSides(bytes);
    }
}

} // namespace meshcast::exporter
