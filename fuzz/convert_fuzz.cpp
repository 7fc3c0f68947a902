#include "convert/context.h"
#include "tools/geomtool/decoder.h"
#include "traverse/state.h"
#include "vrml/input.h"
#include "vrml/node.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

// The whole road of a scene, in memory: any bytes are read, walked and converted, and what comes
// out must decode, record by record.

namespace {

/// Standard output as a file in memory, from its start.
int emptiedOutput() {
    static const int file = [] {
        const int made = memfd_create("stream", 0);
        return made >= 0 && dup2(made, STDOUT_FILENO) >= 0 ? made : -1;
    }();
    if (file < 0 || ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0) {
        std::abort();
    }
    return file;
}

std::vector<std::byte> contents(int file) {
    const off_t size = lseek(file, 0, SEEK_END);
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    if (pread(file, bytes.data(), bytes.size(), 0) != size) {
        std::abort();
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace meshcast;

    // Longer outputs are made by a few bytes of USE, and take long without telling more.
    constexpr std::size_t kLongestInput = 65'536;
    if (size > kLongestInput) {
        return 0;
    }
    const int output = emptiedOutput();
    {
        MemorySource source({reinterpret_cast<const char*>(data), size}, 4096);
        NodePool nodes;
        VrmlInput input(nodes, source);
        QvState state;
        QvNode* root = nullptr;
        readScene(input, root);
        if (root != nullptr) {
            root->traverse(state);
        }
    }
    const std::vector<std::byte> stream = contents(output);
    if (const auto decoded = geom_stream::decode(stream); decoded.error) {
        std::fprintf(stderr, "at byte %zu: %s\n", decoded.error->offset,
                     decoded.error->message.c_str());
        std::abort();
    }
    return 0;
}
