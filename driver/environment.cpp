#include "driver/environment.h"

#include "compat/geom/settings.h"

#include <cstdlib>
#include <string>

namespace meshcast {

ConvertOptions environmentOptions() {
    const auto replace = [](std::string& text, const char* variable) {
        if (const char* const value = std::getenv(variable)) {
            text = value;
        }
    };
    const GEOMsettings geom = GEOMenvironment_settings();
    ConvertOptions options;
    options.version = geom.version;
    options.verify = geom.verify;
    replace(options.images.folder, "RGBTMP");
    replace(options.images.converters[static_cast<std::size_t>(ImageType::kRgb)], "RGBCONV");
    replace(options.images.converters[static_cast<std::size_t>(ImageType::kGif)], "GIFCONV");
    replace(options.images.converters[static_cast<std::size_t>(ImageType::kJpeg)], "JPGCONV");
    return options;
}

} // namespace meshcast
