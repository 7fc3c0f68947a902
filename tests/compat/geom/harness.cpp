#include "tests/compat/geom/harness.h"

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

void* rawBlock(std::size_t bytes) {
    return std::malloc(bytes + 1); // not of size 0, which may return null
}

std::string written(const std::function<void(int fd)>& code) {
    const int fd = memfd_create("written", 0);
    code(fd);
    std::string bytes(static_cast<std::size_t>(lseek(fd, 0, SEEK_END)), '\0');
    const ssize_t count = pread(fd, bytes.data(), bytes.size(), 0);
    close(fd);
    return count == std::ssize(bytes) ? bytes : "cannot be read";
}

GEOMsettings noting(std::string& messages) {
    GEOMsettings settings;
    settings.context = &messages;
    settings.receiver = [](void* context, GEOMmessage kind, const char* text) {
        const char* word = kind == GEOMmessage::error ? "error: " : "finding: ";
        *static_cast<std::string*>(context) += std::string(word) + text + "\n";
    };
    return settings;
}

std::string messagesOf(const std::function<void()>& code) {
    std::string messages;
    const GEOMscope scope(noting(messages));
    code();
    return messages;
}
