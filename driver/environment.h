#pragma once

#include "convert/convert.h"

namespace meshcast {

/// The options that the environment asks for: KRA_GEOM_WRITE_V2 and KRA_GEOM_VERIFY, and for
/// images RGBTMP, RGBCONV, GIFCONV and JPGCONV.
ConvertOptions environmentOptions();

} // namespace meshcast
