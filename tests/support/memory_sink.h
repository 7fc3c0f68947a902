#pragma once

#include "convert/convert.h"
#include "vrml/diagnostics.h"

#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace meshcast {

/// Collects the records of a conversion in a file in memory, and its printed text.
class MemorySink final : public ObjectSink {
public:
    MemorySink() : file_(memfd_create("records", 0)) {}
    ~MemorySink() override { close(file_); }

    void write(const GEOMobj& object) override { GEOMwrite_obj(&object, file_, 0); }
    void print(std::string_view text) override { printed.append(text); }

    /// All records so far.
    std::string bytes() const {
        std::string bytes(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
        const ssize_t count = pread(file_, bytes.data(), bytes.size(), 0);
        return count == static_cast<ssize_t>(bytes.size()) ? bytes : "cannot be read";
    }

    std::string printed;

private:
    int file_;
};

/// Collects messages as the filter prints them.
class MessageText final : public Diagnostics {
public:
    void report(const Diagnostic& diagnostic) override { text += messageText(diagnostic); }

    std::string text;
};

} // namespace meshcast
