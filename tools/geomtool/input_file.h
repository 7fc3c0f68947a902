#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>

namespace geomtool {

/// The input of a command: a file or, for "-", standard input.
class InputFile {
public:
    explicit InputFile(const std::string& name) {
        if (name != "-") {
            opened_.reset(std::fopen(name.c_str(), "rb"));
            file_ = opened_.get();
        }
        if (file_ == nullptr)
            keepError();
    }

    /// Stores up to `capacity` bytes and returns how many; 0 at the end and after an error.
    std::size_t read(std::byte* into, std::size_t capacity) {
        const std::size_t size = file_ == nullptr ? 0 : std::fread(into, 1, capacity, file_);
        if (size == 0 && file_ != nullptr && std::ferror(file_) != 0)
            keepError();
        return size;
    }

    /// The error of opening or reading the file, if any.
    const std::error_code& error() const { return error_; }

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { (void)std::fclose(file); }
    };

    void keepError() { error_ = std::error_code(errno, std::generic_category()); }

    std::unique_ptr<std::FILE, FileCloser> opened_;
    std::FILE* file_ = stdin;
    std::error_code error_;
};

} // namespace geomtool
