#pragma once

#include "evaluate/model.h"

#include <string>

#pragma GCC visibility push(default)

namespace meshcast::evaluate {

/// A model as lines of text, for tests and for comparing builds. Numbers are rounded to five
/// decimals. Defaults, such as an identity matrix, are left out.
std::string modelText(const Model& model);

/// The same for parts of a model.
std::string materialText(const Material& material);
std::string geometryText(const Geometry& geometry);

} // namespace meshcast::evaluate

#pragma GCC visibility pop
