#include "io/files.h"
#include "io/retry.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/magic.h>
#include <optional>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace meshcast::io {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;

/// The target of a path after following its links. Links in /proc stand for open files. For those
/// of this process the descriptor is returned, so that writing continues at its current position.
struct Target {
    std::optional<fs::path> path; ///< Nothing for a link in /proc.
    int descriptor = -1;
};

Target followed(fs::path path) {
    constexpr int kMostLinks = 40;
    std::error_code error;
    for (int i = 0; i < kMostLinks; ++i) {
        const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
        struct statfs system {};
        if (::statfs(folder.c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC) {
            const std::string number = path.filename().string();
            const bool isOwn = fs::equivalent(folder, "/proc/self/fd", error) && !number.empty() &&
                               number.find_first_not_of("0123456789") == std::string::npos;
            constexpr std::size_t kMostDigits = 9;
            return {std::nullopt, isOwn && number.size() <= kMostDigits ? std::stoi(number) : -1};
        }
        const fs::path target = fs::read_symlink(path, error);
        if (error) {
            break;
        }
        path = target.is_absolute() ? target : folder / target;
    }
    return {path};
}

/// Blocks signals that would end the process while a named file is incomplete. Also blocks SIGXFSZ,
/// so that exceeding the file size limit becomes a write error.
class SignalsHeld {
public:
    explicit SignalsHeld(bool holdsAll) {
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, SIGXFSZ);
        if (holdsAll) {
            for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
                sigaddset(&held, signal);
            }
        }
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() {
        // Discards a pending SIGXFSZ: the write error has already reported it.
        sigset_t limit;
        sigemptyset(&limit);
        sigaddset(&limit, SIGXFSZ);
        const timespec now{};
        while (sigtimedwait(&limit, nullptr, &now) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t before_{};
};

/// Writes a new file and flushes it to the disk.
std::error_code writeNew(int descriptor, const std::optional<mode_t>& mode,
                         const std::function<std::error_code(int)>& write) {
    if (const std::error_code error = write(descriptor)) {
        return error;
    }
    const bool isDone =
        (!mode || ::fchmod(descriptor, *mode & kPermissions) == 0) && ::fsync(descriptor) == 0;
    return isDone ? std::error_code() : lastError();
}

/// A random name for a temporary file in a folder.
fs::path scratchName(const fs::path& folder) {
    std::array<unsigned char, 8> random{};
    std::string name = ".meshcast-";
    if (::getentropy(random.data(), random.size()) != 0) {
        random[0] = static_cast<unsigned char>(::getpid());
    }
    for (const unsigned char byte : random) {
        name += "0123456789abcdef"[byte >> 4];
        name += "0123456789abcdef"[byte & 15];
    }
    return folder / name;
}

/// Links an unnamed file to `path`, replacing any existing file.
std::error_code linkTo(int descriptor, const fs::path& folder, const fs::path& path) {
    const std::string open = "/proc/self/fd/" + std::to_string(descriptor);
    const auto link = [&open](const fs::path& name) {
        return ::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (link(path)) {
        return {};
    }
    if (errno != EEXIST) {
        return lastError();
    }
    const SignalsHeld held(true);
    const fs::path scratch = scratchName(folder);
    if (!link(scratch)) {
        return lastError();
    }
    if (::rename(scratch.c_str(), path.c_str()) != 0) {
        const std::error_code error = lastError();
        ::unlink(scratch.c_str());
        return error;
    }
    return {};
}

/// Writes to a temporary name and renames. For file systems without O_TMPFILE.
std::error_code writeNamed(const fs::path& folder, const fs::path& path,
                           const std::optional<mode_t>& mode,
                           const std::function<std::error_code(int)>& write) {
    const SignalsHeld held(true);
    const fs::path scratch = scratchName(folder);
    Descriptor file(::open(scratch.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        return lastError();
    }
    std::error_code error = writeNew(file.number(), mode, write);
    const std::error_code closing = file.close();
    error = error ? error : closing;
    if (!error && ::rename(scratch.c_str(), path.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(scratch.c_str());
    }
    return error;
}

} // namespace

std::error_code writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = writeSome(descriptor, bytes.data(), bytes.size());
        if (count < 0) {
            return lastError();
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

std::error_code writeStandardOutput(const std::function<std::error_code(int descriptor)>& write) {
    const SignalsHeld held(false);
    if (const std::error_code error = write(STDOUT_FILENO)) {
        return error;
    }
    return Descriptor(::dup(STDOUT_FILENO)).close();
}

std::error_code writeFile(const std::string& path,
                          const std::function<std::error_code(int descriptor)>& write) {
    const SignalsHeld held(false);
    const auto [target, descriptor] = followed(path);
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (!target || (exists && !S_ISREG(status.st_mode))) {
        Descriptor file(descriptor >= 0 ? ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                                        : ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (!file.isOpen()) {
            return lastError();
        }
        const std::error_code error = write(file.number());
        return error ? error : file.close();
    }
    const fs::path folder = target->has_parent_path() ? target->parent_path() : fs::path(".");
    const std::optional<mode_t> mode = exists ? std::optional(status.st_mode) : std::nullopt;
    Descriptor file(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
    const bool isUnnamed = file.isOpen() && ::access("/proc/self/fd", F_OK) == 0;
    if (!isUnnamed) {
        return writeNamed(folder, *target, mode, write);
    }
    std::error_code error = writeNew(file.number(), mode, write);
    error = error ? error : linkTo(file.number(), folder, *target);
    const std::error_code closing = file.close();
    return error ? error : closing;
}

} // namespace meshcast::io
