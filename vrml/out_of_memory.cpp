#include "vrml/out_of_memory.h"

#include <cstdlib>
#include <new>

namespace meshcast {

void outOfMemory() {
    if (const std::new_handler handler = std::get_new_handler()) {
        handler();
    }
    std::abort();
}

} // namespace meshcast
