#pragma once

#include <string_view>

namespace meshcast::fuzz {

/// The whole road of a scene, in memory: any bytes are read, walked and converted, and what comes
/// out must decode, record by record. Every scene takes the road twice, in ways that must make no
/// difference: read at once and written in version 10, and read in small pieces and written in
/// version 7. Values and messages are compared. Whether objects are verified, text becomes labels
/// and textures are prepared follows from the scene's bytes.
///
/// A scene whose walk would take long, since USE repeats much of it, is only read.
void convertAndCheck(std::string_view scene);

} // namespace meshcast::fuzz
