#pragma once

#include "evaluate/model.h"
#include "render/gl_name.h"

namespace meshcast::render {

using GlTextureName = GlName<glGenTextures, glDeleteTextures>;

/// An image, uploaded to the driver with its mipmaps.
class GlTexture {
public:
    /// A damaged image is replaced by white. One that exceeds the driver's limits is reduced.
    explicit GlTexture(const evaluate::Image& image);

    /// Binds it to the texture unit that the shaders use.
    void bind(bool repeatS, bool repeatT) const;

private:
    GlTextureName name_;
};

} // namespace meshcast::render
