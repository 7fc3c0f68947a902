#include "tools/vrmltidy/files.h"

#include "vrml/characters.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace meshcast::tidy {

namespace {

std::error_code lastError() { return {errno, std::generic_category()}; }

/// An open file, closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ > STDERR_FILENO) {
            ::close(number_);
        }
    }
    int number() const { return number_; }
    /// Closes the file: some errors of writing come no earlier.
    std::error_code close() {
        return ::close(std::exchange(number_, -1)) == 0 ? std::error_code() : lastError();
    }

private:
    int number_;
};

std::error_code writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return lastError();
        }
    }
    return {};
}

/// The permissions that a new file gets.
mode_t newFileMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return static_cast<mode_t>(0666) & ~mask;
}

/// "a%20b" as "a b".
std::string percentDecoded(const std::string& name) {
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '%' && i + 2 < name.size() && isHexDigit(name[i + 1]) &&
            isHexDigit(name[i + 2])) {
            const std::string digits = "0x" + name.substr(i + 1, 2);
            decoded += static_cast<char>(scanMagnitude(digits.c_str()).magnitude);
            i += 2;
        } else {
            decoded += name[i];
        }
    }
    return decoded;
}

bool hasScheme(const std::string& name) {
    const auto end = std::find_if_not(name.begin(), name.end(), [](char c) {
        return (isNameCharacter(c) && c != '_') || c == '+' || c == '-' || c == '.';
    });
    // One letter and a colon is a drive, which is no network but not to be found here either.
    return end != name.end() && *end == ':';
}

bool isInside(const std::filesystem::path& folder, const std::filesystem::path& file) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first ==
           folder.end();
}

} // namespace

std::variant<std::string, std::error_code> readAll(const std::string& path) {
    const Descriptor file(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0) {
        return lastError();
    }
    if (S_ISDIR(status.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    constexpr std::size_t kSmallestRoom = std::size_t(64) * 1024;
    std::string bytes;
    std::size_t size = 0;
    if (S_ISREG(status.st_mode) && status.st_size > 0) {
        // One byte more, so that the end is met without more room.
        bytes.resize(std::min(static_cast<std::size_t>(status.st_size), kLargestScene) + 1);
    }
    for (;;) {
        if (size == bytes.size()) {
            if (size > kLargestScene) {
                return std::make_error_code(std::errc::file_too_large);
            }
            bytes.resize(std::max(kSmallestRoom, 2 * size));
        }
        const ssize_t count = ::read(file.number(), bytes.data() + size, bytes.size() - size);
        if (count > 0) {
            size += static_cast<std::size_t>(count);
        } else if (count == 0) {
            bytes.resize(size);
            return bytes;
        } else if (errno != EINTR) {
            return lastError();
        }
    }
}

std::error_code writeToOutput(std::string_view text) {
    if (const std::error_code error = writeAll(STDOUT_FILENO, text)) {
        return error;
    }
    return Descriptor(::dup(STDOUT_FILENO)).close();
}

std::error_code writeToFile(const std::string& path, std::string_view text) {
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
        if (file.number() < 0) {
            return lastError();
        }
        const std::error_code error = writeAll(file.number(), text);
        return error ? error : file.close();
    }
    std::error_code ignored;
    const std::filesystem::path linked = std::filesystem::canonical(path, ignored);
    const std::string target = exists && !ignored ? linked.string() : path;
    std::string scratch = target + ".XXXXXX";
    Descriptor file(::mkstemp(scratch.data()));
    if (file.number() < 0) {
        return lastError();
    }
    std::error_code error = writeAll(file.number(), text);
    if (!error && (::fchmod(file.number(), exists ? status.st_mode & 07777 : newFileMode()) != 0 ||
                   ::fsync(file.number()) != 0)) {
        error = lastError();
    }
    if (const std::error_code closing = file.close(); !error) {
        error = closing;
    }
    if (!error && ::rename(scratch.c_str(), target.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(scratch.c_str());
    }
    return error;
}

std::variant<InlineSource::Scene, std::string> FolderScenes::open(const std::string& name,
                                                                  const std::string& fromPath) {
    if (hasScheme(name)) {
        return std::string("only files are put in place");
    }
    const std::filesystem::path folder = std::filesystem::path(fromPath).parent_path();
    const std::string fragmentless = name.substr(0, name.find('#'));
    std::filesystem::path path = folder / fragmentless;
    std::error_code error;
    std::filesystem::path file = std::filesystem::canonical(path, error);
    if (error) {
        path = folder / percentDecoded(fragmentless);
        file = std::filesystem::canonical(path, error);
    }
    if (error) {
        return error.message();
    }
    if (!isInside(root_, file)) {
        return std::string("it is outside of the root folder");
    }
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::string("it is no file");
    }
    auto bytes = readAll(file.string());
    if (const auto* const failure = std::get_if<std::error_code>(&bytes)) {
        return failure->message();
    }
    return Scene{path.lexically_normal().string(), file.string(),
                 std::get<std::string>(std::move(bytes))};
}

} // namespace meshcast::tidy
