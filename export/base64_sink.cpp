#include "export/base64_sink.h"

#include <algorithm>
#include <sodium/utils.h>

namespace meshcast::exporter {

std::string base64(std::string_view bytes) {
    constexpr int kVariant = sodium_base64_VARIANT_ORIGINAL;
    std::string text(sodium_base64_encoded_len(bytes.size(), kVariant), '\0');
    sodium_bin2base64(text.data(), text.size(),
                      reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), kVariant);
    text.pop_back(); // The library appends a zero byte.
    return text;
}

void Base64Sink::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t taken = std::min(bytes.size(), pieceSize_ - pending_.size());
        pending_.append(bytes.substr(0, taken));
        bytes.remove_prefix(taken);
        if (pending_.size() == pieceSize_) {
            finish();
        }
    }
}

void Base64Sink::finish() {
    if (!pending_.empty()) {
        to_.write(before_);
        to_.write(base64(pending_));
        to_.write(after_);
        pending_.clear();
    }
}

} // namespace meshcast::exporter
