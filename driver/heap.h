#pragma once

namespace meshcast {

/// Makes the heap ready for a scene that is about to be read from a descriptor: if that is a large
/// file, enlarges the heap by about its size at once, with large pages, and keeps what is freed for
/// what comes next. Nothing is used before it is needed. Does nothing for small files and pipes,
/// and with other C libraries than GNU's.
void prepareHeap(int descriptor);

} // namespace meshcast
