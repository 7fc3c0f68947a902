#pragma once

#include "convert/convert.h"
#include "vrml/diagnostics.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace meshcast {

/// Collects the records of a conversion in a file in memory, and its printed text.
class MemorySink final : public ObjectSink {
public:
    /// Whether repeated shapes are written as copies of their records, as by the sink of the
    /// filter.
    explicit MemorySink(bool takesCopies = true)
        : file_(memfd_create("records", 0)), takesCopies_(takesCopies) {}
    ~MemorySink() override { close(file_); }

    void write(const GEOMobj& object) override { GEOMwrite_obj(&object, file_, 0); }
    std::size_t writeAndCopy(const GEOMobj& object, std::span<unsigned char> room) override {
        return takesCopies_ ? GEOMwrite_obj_and_copy(&object, file_, room.data())
                            : ObjectSink::writeAndCopy(object, room);
    }
    void writeCopy(std::span<const unsigned char> record) override {
        ++copies;
        GEOMwrite_copy(record.data(), record.size(), file_);
    }
    void print(std::string_view text) override { printed.append(text); }

    /// All records so far.
    std::string bytes() const {
        std::string bytes(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
        const ssize_t count = pread(file_, bytes.data(), bytes.size(), 0);
        return count == static_cast<ssize_t>(bytes.size()) ? bytes : "cannot be read";
    }

    std::string printed;
    std::size_t copies = 0; ///< The number of records that were written as copies.

private:
    int file_;
    bool takesCopies_;
};

/// Collects messages as the filter prints them.
class MessageText final : public Diagnostics {
public:
    void report(const Diagnostic& diagnostic) override { text += messageText(diagnostic); }

    std::string text;
};

} // namespace meshcast
