#include "tools/vrmltidy/inflate.h"

#include <algorithm>
#include <memory>
#include <zlib.h>

namespace meshcast::tidy {

namespace {

constexpr std::string_view kMagic = "\x1f\x8b";

/// Inflates what the stream holds to the end of one member.
int inflateMember(z_stream& stream, std::size_t limit, std::string& inflated) {
    constexpr std::size_t kBlockSize = std::size_t(64) * 1024;
    const auto block = std::make_unique<Bytef[]>(kBlockSize);
    int status = Z_OK;
    while (status == Z_OK && inflated.size() <= limit) {
        stream.next_out = block.get();
        stream.avail_out = kBlockSize;
        status = ::inflate(&stream, Z_NO_FLUSH);
        inflated.append(reinterpret_cast<const char*>(block.get()), kBlockSize - stream.avail_out);
    }
    return status;
}

} // namespace

bool isCompressed(std::string_view bytes) { return bytes.starts_with(kMagic); }

std::string inflate(std::string_view compressed, std::size_t limit, std::string& inflated) {
    constexpr int kGzipWindow = 16 + MAX_WBITS;
    std::string_view rest = compressed;
    while (isCompressed(rest)) {
        z_stream stream{};
        if (inflateInit2(&stream, kGzipWindow) != Z_OK) {
            return "cannot be inflated: out of memory";
        }
        const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, inflateEnd);
        // zlib counts in 32 bits.
        const std::string_view piece = rest.substr(0, std::size_t(1) << 30);
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
        stream.avail_in = static_cast<uInt>(piece.size());
        const int status = inflateMember(stream, limit, inflated);
        if (inflated.size() > limit) {
            return "inflates to more than " + std::to_string(limit) + " bytes";
        }
        if (status != Z_STREAM_END) {
            return status == Z_BUF_ERROR ? "is compressed, and cut short"
                                         : "is compressed, and damaged";
        }
        rest.remove_prefix(piece.size() - stream.avail_in);
    }
    return {};
}

} // namespace meshcast::tidy
