#include "evaluate/pixels.h"
#include "export/writers.h"

#include <utility>
#include <variant>

namespace meshcast::exporter {

Exported writePicture(evaluate::Model&& model, const Options& options) {
    Exported exported;
    auto drawn = render::drawPicture(std::move(model), options.picture);
    if (auto* const problem = std::get_if<std::string>(&drawn)) {
        exported.failure = std::move(*problem);
        return exported;
    }
    const std::vector<std::uint8_t> png = evaluate::encodePng(std::get<evaluate::Pixels>(drawn));
    exported.files.push_back(fileOf("", std::string(png.begin(), png.end())));
    return exported;
}

} // namespace meshcast::exporter
