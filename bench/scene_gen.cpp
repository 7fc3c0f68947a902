// Writes a scene to standard output:
//
//     scene_gen KIND BYTES [SEED]

#include "bench/scenes.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>

namespace {

using bench::SceneResult;

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

SceneResult run(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        return SceneResult::BadRequest;
    }
    const auto bytes = parseNumber<std::size_t>(argv[2]);
    const auto seed = parseNumber<std::uint64_t>(argc > 3 ? argv[3] : "1");
    if (!bytes || !seed) {
        return SceneResult::BadRequest;
    }
    return bench::writeScene(argv[1], *bytes, *seed, stdout);
}

} // namespace

int main(int argc, char** argv) {
    switch (run(argc, argv)) {
    case SceneResult::Written:
        return EXIT_SUCCESS;
    case SceneResult::CannotWrite:
        (void)std::fputs("scene_gen: cannot write the scene\n", stderr);
        return EXIT_FAILURE;
    default:
        (void)std::fputs("usage: scene_gen terrain|parts|primitives|coloured BYTES [SEED]\n",
                         stderr);
        return 2;
    }
}
