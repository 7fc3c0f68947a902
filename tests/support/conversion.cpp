#include "tests/support/conversion.h"

#include "vrml/scene_reader.h"

#include <gtest/gtest.h>

#include <span>

namespace meshcast {

namespace {

std::string withHeader(std::string_view body) {
    return std::string("#VRML V1.0 ascii\n").append(body);
}

} // namespace

ReadScene::ReadScene(std::string_view body, std::size_t pieceSize) {
    const std::string text = withHeader(body);
    MemorySource source(text, pieceSize);
    MessageText diagnostics;
    ok = readScene(scene, source, diagnostics);
    messages = diagnostics.text;
}

Conversion convertWhole(std::string_view text, const ConvertOptions& options) {
    MemorySource source(text);
    MemorySink sink;
    MessageText diagnostics;
    convertScene(source, sink, diagnostics, options);
    Conversion conversion{{}, sink.bytes(), sink.printed, diagnostics.text};
    geom_stream::DecodeResult decoded =
        geom_stream::decode(std::as_bytes(std::span(conversion.bytes)));
    EXPECT_FALSE(decoded.error) << decoded.error->message << " at " << decoded.error->offset;
    conversion.objects = std::move(decoded.objects);
    return conversion;
}

Conversion convert(std::string_view body, const ConvertOptions& options) {
    return convertWhole(withHeader(body), options);
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
    return messageText({DiagnosticKind::kReadError, line, message});
}

} // namespace meshcast
