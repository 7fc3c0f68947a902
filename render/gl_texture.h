#pragma once

#include "evaluate/model.h"
#include "render/gl_name.h"

namespace meshcast::render {

using GlTextureName = GlName<glGenTextures, glDeleteTextures>;

/// An image, as the driver has it, with smaller copies for where it is seen from afar.
class GlTexture {
public:
    /// An image that is damaged is white, one beyond the driver's limits coarser.
    explicit GlTexture(const evaluate::Image& image);

    /// Puts it where the shaders look for their image.
    void bind(bool repeatS, bool repeatT) const;

private:
    GlTextureName name_;
};

} // namespace meshcast::render
