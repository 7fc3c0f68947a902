#pragma once

#include <GLES3/gl3.h>
#include <utility>

namespace meshcast::render {

/// Owns an object of OpenGL: `Create` and `Delete` are functions such as glGenBuffers and
/// glDeleteBuffers. A context has to be current whenever one is created or destroyed.
template <auto Create, auto Delete>
class GlName {
public:
    GlName() { Create(1, &name_); }
    GlName(const GlName&) = delete;
    GlName& operator=(const GlName&) = delete;
    GlName(GlName&& other) noexcept : name_(std::exchange(other.name_, 0)) {}
    GlName& operator=(GlName&& other) noexcept {
        std::swap(name_, other.name_);
        return *this;
    }
    ~GlName() {
        if (name_ != 0) {
            Delete(1, &name_);
        }
    }

    GLuint get() const { return name_; }

private:
    GLuint name_ = 0;
};

using GlBuffer = GlName<glGenBuffers, glDeleteBuffers>;
using GlVertexArray = GlName<glGenVertexArrays, glDeleteVertexArrays>;
using GlRenderbuffer = GlName<glGenRenderbuffers, glDeleteRenderbuffers>;
using GlFramebuffer = GlName<glGenFramebuffers, glDeleteFramebuffers>;

} // namespace meshcast::render
