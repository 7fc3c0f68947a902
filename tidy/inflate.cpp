#include "tidy/inflate.h"

#include "tidy/tidy.h"

#include <algorithm>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

namespace meshcast::tidy {

namespace {

struct CloseFile {
    void operator()(gzFile_s* file) const { gzclose(file); }
};
using File = std::unique_ptr<gzFile_s, CloseFile>;

/// Passes the bytes to zlib through a file in memory, because only zlib's file functions handle
/// everything that a gzip file may contain.
File openInMemory(const std::string& bytes) {
    const int memory = ::memfd_create("compressed scene", MFD_CLOEXEC);
    bool isWritten = memory >= 0;
    for (std::size_t done = 0; isWritten && done < bytes.size();) {
        const ssize_t count = ::write(memory, bytes.data() + done, bytes.size() - done);
        isWritten = count > 0;
        done += isWritten ? static_cast<std::size_t>(count) : 0;
    }
    File file(isWritten && ::lseek(memory, 0, SEEK_SET) == 0 ? gzdopen(memory, "rb") : nullptr);
    if (file == nullptr && memory >= 0) {
        ::close(memory);
    }
    return file;
}

} // namespace

bool isCompressed(std::string_view bytes) { return bytes.starts_with("\x1f\x8b"); }

std::uint64_t mostInflated(std::uint64_t compressedSize) {
    constexpr std::uint64_t kTimes = 128;
    constexpr std::uint64_t kFree = std::uint64_t(16) << 20;
    return std::min(std::max(kFree, kTimes * compressedSize), kLargestScene);
}

std::string inflate(std::string& bytes, std::uint64_t limit) {
    const File file = openInMemory(bytes);
    if (file == nullptr) {
        return "cannot be inflated: out of memory";
    }
    std::string().swap(bytes);
    constexpr unsigned kBlockSize = 256 * 1024;
    gzbuffer(file.get(), kBlockSize);
    const auto block = std::make_unique<char[]>(kBlockSize);
    for (;;) {
        const int count = gzread(file.get(), block.get(), kBlockSize);
        if (count > 0 && limit - bytes.size() < static_cast<unsigned>(count)) {
            return "inflates to more than " + std::to_string(limit) + " bytes";
        }
        bytes.append(block.get(), static_cast<std::size_t>(std::max(count, 0)));
        if (count < static_cast<int>(kBlockSize)) {
            break;
        }
    }
    int error = Z_OK;
    gzerror(file.get(), &error);
    if (error == Z_OK || error == Z_STREAM_END) {
        return {};
    }
    return error == Z_BUF_ERROR   ? "is compressed but truncated"
           : error == Z_MEM_ERROR ? "cannot be inflated: out of memory"
                                  : "is compressed but damaged";
}

} // namespace meshcast::tidy
