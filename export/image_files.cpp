#include "export/image_files.h"

#include "export/writers.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace meshcast::exporter {

std::string imageFileName(const evaluate::Image& image, std::size_t number,
                          const Options& options) {
    std::string name = options.name;
    name.append("-image-").append(std::to_string(number + 1));
    return name.append(image.type == evaluate::Image::Type::kPng ? ".png" : ".jpg");
}

File imageFile(evaluate::Image& image, std::string name) {
    std::string bytes(image.bytes.begin(), image.bytes.end());
    std::vector<std::uint8_t>().swap(image.bytes);
    return fileOf(std::move(name), std::move(bytes));
}

} // namespace meshcast::exporter
