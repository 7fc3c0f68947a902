#pragma once

#include <cstdint>

namespace meshcast {

/// Whether shapes carry texture coordinates and images are prepared: not 0 for yes. Nothing turns
/// it on yet; an image of an unknown type turns it off.
inline std::int32_t textureSwitch = 0;

} // namespace meshcast
