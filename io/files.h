#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#pragma GCC visibility push(default)

namespace meshcast::io {

/// An open descriptor, closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    /// Closes it: some errors of writing come no earlier.
    std::error_code close();

private:
    int number_;
};

/// The error that the latest call of the system left in errno.
std::error_code lastError();

/// Reads to the end. Fails with file_too_large as soon as there are more than `limit` bytes.
std::variant<std::string, std::error_code> readWhole(int descriptor, std::uint64_t limit);

/// The same for the file of that name. Folders are no files.
std::variant<std::string, std::error_code> readFile(const std::string& path, std::uint64_t limit);

/// Writes all bytes.
std::error_code writeAll(int descriptor, std::string_view bytes);

/// Writes to standard output, whose descriptor `write` gets, and finds out what only closing it
/// tells.
std::error_code writeStandardOutput(const std::function<std::error_code(int descriptor)>& write);

/// Writes a file so that its name leads to the old content or to all of the new one, whatever
/// happens meanwhile; `write` gets the descriptor.
///
/// - What is not a regular file is written to as it is: a device, a pipe, and what a name like
///   /dev/stdout leads to.
/// - A symbolic link stays, and what it leads to is replaced. Of a file with several names, only
///   this one gets the new content.
/// - The new file belongs to whoever runs the program. It keeps the permissions of the old one,
///   but not set-user-ID, set-group-ID and the sticky bit.
/// - When writing fails, is interrupted or the process ends, nothing is left behind: the new file
///   has no name before it is complete (O_TMPFILE). Where the file system cannot do that, signals
///   that end the process wait until the file is complete or gone.
std::error_code writeFile(const std::string& path,
                          const std::function<std::error_code(int descriptor)>& write);

/// A folder outside of which nothing is opened.
class Folder {
public:
    /// The folder of that name, or why it cannot be used.
    static std::variant<Folder, std::error_code> open(const std::string& path);

    /// Opens the regular file of a name relative to the folder. It lies in the folder wherever
    /// links lead and whoever swaps files meanwhile; what is not a regular file is never waited
    /// for. Returns why not as the end of a sentence: "it is outside of the root folder".
    std::variant<Descriptor, std::string> openFile(const std::string& name) const;

    /// Its absolute name, without links.
    const std::string& path() const { return path_; }

private:
    Folder(Descriptor folder, std::string path)
        : folder_(std::move(folder)), path_(std::move(path)) {}

    Descriptor folder_;
    std::string path_;
};

} // namespace meshcast::io

#pragma GCC visibility pop
