#include "io/files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/openat2.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace meshcast::io {

namespace {

constexpr int kReading = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

/// The absolute path of an open file; empty when it cannot be found out.
std::string nameOf(int descriptor) {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error)
        .string();
}

/// Opens a file and closes it again if it is outside of the folder. For kernels without openat2.
int openAndCheck(int folder, const std::string& folderName, const std::string& name) {
    const int file = ::openat(folder, name.c_str(), kReading);
    if (file < 0) {
        return file;
    }
    const std::string found = nameOf(file);
    const std::string inside = folderName == "/" ? folderName : folderName + "/";
    if (found.starts_with(inside)) {
        return file;
    }
    ::close(file);
    errno = EXDEV;
    return -1;
}

int openBeneath(int folder, const std::string& folderName, const std::string& name) {
    open_how how{};
    how.flags = kReading;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
    constexpr int kMostTries = 16; // The call fails when a folder is renamed at the same time.
    for (int i = 0; i < kMostTries; ++i) {
        const long file = ::syscall(SYS_openat2, folder, name.c_str(), &how, sizeof how);
        if (file >= 0) {
            return static_cast<int>(file);
        }
        if (errno == ENOSYS || errno == EPERM) {
            return openAndCheck(folder, folderName, name);
        }
        if (errno != EAGAIN && errno != EINTR) {
            break;
        }
    }
    return -1;
}

} // namespace

std::variant<Folder, std::error_code> Folder::open(const std::string& path) {
    Descriptor folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) {
        return lastError();
    }
    std::string name = nameOf(folder.number());
    return Folder(std::move(folder), std::move(name));
}

std::variant<Descriptor, std::string> Folder::openFile(const std::string& name) const {
    if (name.find('\0') != std::string::npos) {
        return std::string("its name holds a zero byte");
    }
    Descriptor file(openBeneath(folder_.number(), path_, name.empty() ? "." : name));
    if (!file.isOpen()) {
        return errno == EXDEV || errno == ELOOP ? std::string("it is outside of the root folder")
                                                : lastError().message();
    }
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        return lastError().message();
    }
    if (!S_ISREG(status.st_mode)) {
        return std::string("it is not a regular file");
    }
    return file;
}

} // namespace meshcast::io
