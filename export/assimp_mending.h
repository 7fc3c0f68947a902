#pragma once

#include <string>
#include <string_view>

namespace meshcast::exporter {

/// Puts right what assimp 5.2 gets wrong in the main file of the format with that extension:
///
/// - PLY: colours are announced as bytes, and written as floats.
/// - COLLADA: the time of day is in it, so that no two files are alike; 1970 takes its place.
/// - X3D: faces are seen from their front only.
void mendFile(std::string& bytes, std::string_view extension);

} // namespace meshcast::exporter
