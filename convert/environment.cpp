#include "compat/geom/settings.h"
#include "convert/convert.h"

#include <cstdlib>

namespace meshcast {

namespace {

void replace(std::string& text, const char* variable) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
        text = value;
    }
}

} // namespace

ConvertOptions environmentOptions() {
    const GEOMsettings geom = GEOMenvironment_settings();
    ConvertOptions options;
    options.version = geom.version;
    options.verify = geom.verify;
    replace(options.images.folder, "RGBTMP");
    auto& [rgb, gif, jpeg] = options.images.converters;
    replace(rgb, "RGBCONV");
    replace(gif, "GIFCONV");
    replace(jpeg, "JPGCONV");
    return options;
}

} // namespace meshcast
