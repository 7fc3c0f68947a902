#include "vrml/keyed_hash.h"

#include <array>
#include <chrono>
#include <cstring>
#include <sodium/crypto_shorthash.h>
#include <sys/random.h>
#include <sys/types.h>

namespace meshcast {

namespace {

using Key = std::array<unsigned char, crypto_shorthash_KEYBYTES>;

/// Random bytes from the kernel. Early after boot there may be none; then the time and the address
/// of the program in memory are used, so that the filter need not wait.
Key drawKey() {
    Key key{};
    if (::getrandom(key.data(), key.size(), GRND_NONBLOCK) != static_cast<ssize_t>(key.size())) {
        const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
        const auto place = reinterpret_cast<std::uintptr_t>(&key);
        std::memcpy(key.data(), &time, sizeof time);
        std::memcpy(key.data() + sizeof time, &place, sizeof place);
    }
    return key;
}

} // namespace

std::uint64_t keyedHash(std::string_view text) {
    // One key for all scenes of the process, because drawing a key takes a system call.
    static const Key key = drawKey();
    std::array<unsigned char, crypto_shorthash_BYTES> bytes{};
    crypto_shorthash(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                     key.data());
    std::uint64_t hash = 0;
    std::memcpy(&hash, bytes.data(), sizeof hash);
    return hash;
}

} // namespace meshcast
