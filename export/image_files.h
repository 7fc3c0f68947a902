#pragma once

#include "evaluate/model.h"
#include "export/export.h"

#include <cstddef>
#include <string>

namespace meshcast::exporter {

/// The name of a file beside the main one for an image of the model: NAME-image-1.png.
std::string imageFileName(const evaluate::Image& image, std::size_t number, const Options& options);

/// A file of the bytes of an image, which are taken from it.
File imageFile(evaluate::Image& image, std::string name);

} // namespace meshcast::exporter
