#include "tests/support/conversion.h"

#include "convert/context.h"
#include "tests/support/capture.h"
#include "traverse/state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

namespace meshcast {

namespace {

constexpr std::string_view kHeader = "#VRML V1.0 ascii\n";

Captured walk(std::string_view text) {
    return capture([text] {
        constexpr std::string_view kTag = "MESHCAST";
        std::copy(kTag.begin(), kTag.end(), programTag.begin());
        initialiseConversion();
        MemorySource source(text);
        NodePool nodes;
        VrmlInput input(nodes, source);
        QvState state;
        QvNode* root = nullptr;
        readScene(input, root);
        if (root != nullptr) {
            root->traverse(state);
        }
    });
}

} // namespace

ReadScene::ReadScene(std::string_view body, std::size_t pieceSize)
    : text_(std::string(kHeader).append(body)), source_(text_, pieceSize), input(nodes_, source_) {
    messages = capture([this] { ok = readScene(input, root); }).err;
}

Conversion convertRaw(std::string_view text) {
    Captured captured = walk(text);
    geom_stream::DecodeResult decoded = geom_stream::decode(std::as_bytes(std::span(captured.out)));
    return {std::move(decoded.objects), std::move(captured.out), std::move(captured.err)};
}

Conversion convert(std::string_view body) {
    Captured captured = walk(std::string(kHeader).append(body));
    geom_stream::DecodeResult decoded = geom_stream::decode(std::as_bytes(std::span(captured.out)));
    EXPECT_FALSE(decoded.error) << decoded.error->message << " at " << decoded.error->offset;
    return {std::move(decoded.objects), std::move(captured.out), std::move(captured.err)};
}

std::string doubled(const std::string& leaf, int levels) {
    std::string text = "Group { Switch { DEF a0 " + leaf;
    for (int i = 1; i <= levels; ++i) {
        const std::string below = "USE a" + std::to_string(i - 1) + " ";
        text += " DEF a" + std::to_string(i) + " Group { " + below + below + "}";
    }
    return text + " } USE a" + std::to_string(levels) + " }";
}

std::string readErrorText(std::string_view message, int line) {
    std::array<char, 64> where{};
    std::snprintf(where.data(), where.size(), "\n\tOccurred at line %3d\n", line);
    return std::string("VRML read error: ").append(message).append(where.data());
}

} // namespace meshcast
