#pragma once

#include <string_view>

namespace meshcast::fuzz {

/// Converts any bytes in memory and checks that the output can be decoded. Every scene is converted
/// twice: read as a whole and written in version 10, then read in small pieces and written in
/// version
/// 7. Both must give the same values and messages. The bytes of the scene decide whether objects
/// are verified, and whether text and textures are converted.
///
/// A scene that would take long to walk, since USE repeats much of it, is only read.
void convertAndCheck(std::string_view scene);

} // namespace meshcast::fuzz
