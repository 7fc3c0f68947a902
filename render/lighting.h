#pragma once

#include "evaluate/model.h"
#include "render/gl_program.h"
#include "render/view.h"

#include <vector>

namespace meshcast::render {

/// Sets the light uniforms of the program: the first kMostLights lights of the scene, without
/// attenuation, or a headlight if it has none; and some ambient light. A surface that faces the
/// headlight shows exactly its colour.
void setLights(const GlProgram& program, const std::vector<evaluate::Light>& lights,
               const View& view);

} // namespace meshcast::render
