#pragma once

#include <EGL/egl.h>
#include <memory>

namespace meshcast::render {

/// A context of OpenGL ES 3.0 that draws into memory, current on its thread for as long as it
/// lives. It needs neither a window system nor a display.
class GlContext {
public:
    /// Null if no driver of this computer supports it.
    static std::unique_ptr<GlContext> create();

    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    ~GlContext();

private:
    explicit GlContext(EGLDisplay display) : display_(display) {}
    bool makeCurrent();

    EGLDisplay display_; ///< Initialised.
    EGLContext context_ = EGL_NO_CONTEXT;
};

} // namespace meshcast::render
