#pragma once

namespace meshcast::render {

/// How many lights the shaders know.
inline constexpr int kMostLights = 16;

// GLSL ES 3.00. Positions and directions are those of the eye: it is at the origin and looks along
// -Z. The page that vrmlexport writes shades with the same formulas.
extern const char* const kVertexShader;
extern const char* const kFragmentShader;

} // namespace meshcast::render
