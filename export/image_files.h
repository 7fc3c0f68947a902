#pragma once

#include "evaluate/model.h"
#include "export/export.h"

#include <cstddef>
#include <string>

namespace meshcast::exporter {

/// The name of the file for an image of the model, such as NAME-image-1.png.
std::string imageFileName(const evaluate::Image& image, std::size_t number, const Options& options);

/// A file with the bytes of an image. Moves the bytes out of the image.
File imageFile(evaluate::Image& image, std::string name);

} // namespace meshcast::exporter
