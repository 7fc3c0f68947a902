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

/// Owns an open file descriptor and closes it when destroyed.
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
    /// Closes it. Some write errors are only reported here.
    std::error_code close();

private:
    int number_;
};

/// The error in errno, as set by the last system call.
std::error_code lastError();

/// Reads to the end of the file. Fails with file_too_large as soon as there are more than `limit`
/// bytes.
std::variant<std::string, std::error_code> readWhole(int descriptor, std::uint64_t limit);

/// Opens and reads a file in the same way. Fails for folders.
std::variant<std::string, std::error_code> readFile(const std::string& path, std::uint64_t limit);

/// Writes all bytes, waiting as often as needed.
std::error_code writeAll(int descriptor, std::string_view bytes);

/// Calls `write` with the descriptor of standard output. Also reports errors that only show when it
/// is closed.
std::error_code writeStandardOutput(const std::function<std::error_code(int descriptor)>& write);

/// Writes a file atomically: its name always refers to the complete old or the complete new
/// content. `write` is called with the descriptor of the new file.
///
/// - Devices, pipes and names such as /dev/stdout are written to directly.
/// - A symbolic link is kept, and its target is replaced. Other hard links of the file keep the
///   old content.
/// - The new file belongs to the user of the process. It gets the permissions of the old one, but
///   not set-user-ID, set-group-ID and the sticky bit.
/// - A failure, a signal or a crash leaves no partial file: the new file has no name until it is
///   complete (O_TMPFILE). On file systems without O_TMPFILE, signals that would end the process
///   are blocked until the file is complete or deleted.
std::error_code writeFile(const std::string& path,
                          const std::function<std::error_code(int descriptor)>& write);

/// A folder that files are opened in, and never outside of it.
class Folder {
public:
    /// Opens a folder, or returns the error.
    static std::variant<Folder, std::error_code> open(const std::string& path);

    /// Opens a regular file by a name relative to the folder. The file is inside the folder even if
    /// links lead elsewhere or files are replaced during the call. Never blocks on files of other
    /// kinds. On failure returns the reason as a clause: "it is outside of the root folder".
    std::variant<Descriptor, std::string> openFile(const std::string& name) const;

    /// The absolute path, without symbolic links.
    const std::string& path() const { return path_; }

private:
    Folder(Descriptor folder, std::string path)
        : folder_(std::move(folder)), path_(std::move(path)) {}

    Descriptor folder_;
    std::string path_;
};

} // namespace meshcast::io

#pragma GCC visibility pop
