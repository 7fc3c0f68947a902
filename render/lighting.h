#pragma once

#include "evaluate/model.h"
#include "render/gl_program.h"
#include "render/view.h"

#include <vector>

namespace meshcast::render {

/// Gives the program the light of a scene: its own lights, the first kMostLights of them and
/// without the loss of light with distance, or a headlight where it has none; and a little from
/// everywhere. A surface that faces the headlight shows its colour as it is.
void setLights(const GlProgram& program, const std::vector<evaluate::Light>& lights,
               const View& view);

} // namespace meshcast::render
