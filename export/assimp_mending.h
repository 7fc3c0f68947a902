#pragma once

#include <string>
#include <string_view>

namespace meshcast::exporter {

/// Corrects errors of assimp 5.2 in the main file of the format with that extension:
///
/// - PLY: the header declares colours as bytes, but they are floats.
/// - COLLADA: the file has the current time, so that no two files are equal. Replaced by 1970.
/// - X3D: back faces are not shown. They are made visible.
void mendFile(std::string& bytes, std::string_view extension);

} // namespace meshcast::exporter
