#include "tests/compat/geom/harness.h"

#include <cstdlib>
#include <sys/mman.h>

void* raw_block(std::size_t bytes) {
    return std::malloc(bytes + 1); // never of size 0, which might be null
}

std::string written(const std::function<void(int fd)>& code) {
    const int fd = memfd_create("written", 0);
    code(fd);
    return takeContents(fd);
}
