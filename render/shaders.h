#pragma once

namespace meshcast::render {

/// The most lights that the shaders support.
inline constexpr int kMostLights = 16;

// GLSL ES 3.00. Positions and directions are in camera space: the camera is at the origin and looks
// along -Z. The pages of vrmlexport use the same formulas.
extern const char* const kVertexShader;
extern const char* const kFragmentShader;

} // namespace meshcast::render
