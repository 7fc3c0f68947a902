#pragma once

namespace meshcast {

/// Ends the process after an exhausted allocation of the reader. The installed new-handler has
/// the word, as it has when `new` fails; without one the process aborts.
[[noreturn]] void outOfMemory();

} // namespace meshcast
