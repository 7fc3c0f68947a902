#include "export/export.h"

#include "export/writers.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace meshcast::exporter {

const std::vector<Format>& formats() {
    static const std::vector<Format> kFormats = [] {
        std::vector<Format> formats = {
            {"glb", "glTF 2.0 in one binary file"},
            {"gltf", "glTF 2.0 as text, with its buffer and images beside it"},
            {"html", "a page that shows the scene in a browser, in one file"},
            {"png", "a picture"},
        };
        for (const AssimpFormat& format : assimpFormats()) {
            formats.push_back(format.format);
        }
        return formats;
    }();
    return kFormats;
}

const Format* findFormat(std::string_view extension) {
    const auto isSame = [extension](const Format& format) {
        return std::equal(extension.begin(), extension.end(), format.extension.begin(),
                          format.extension.end(), [](char c, char lower) {
                              return c == lower || (c >= 'A' && c <= 'Z' && c - 'A' + 'a' == lower);
                          });
    };
    const auto found = std::find_if(formats().begin(), formats().end(), isSame);
    return found == formats().end() ? nullptr : &*found;
}

File fileOf(std::string name, std::string bytes) {
    const auto kept = std::make_shared<std::string>(std::move(bytes));
    return {std::move(name), [kept](ByteSink& sink) {
                sink.write(*kept);
                std::string().swap(*kept);
            }};
}

Exported exportModel(evaluate::Model&& model, const Format& format, const Options& options) {
    for (const AssimpFormat& known : assimpFormats()) {
        if (known.format.extension == format.extension) {
            return writeWithAssimp(std::move(model), known, options);
        }
    }
    if (format.extension == "png") {
        return writePicture(std::move(model), options);
    }
    if (format.extension == "html") {
        return writePage(std::move(model), options);
    }
    return writeGltf(std::move(model), format.extension == "glb", options);
}

} // namespace meshcast::exporter
