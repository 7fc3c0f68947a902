#include "render/gl_program.h"

#include "render/shaders.h"

#include <array>

namespace meshcast::render {

GlProgram::GlProgram() : program_(glCreateProgram()) {
    attach(GL_VERTEX_SHADER, kVertexShader);
    attach(GL_FRAGMENT_SHADER, kFragmentShader);
    glBindAttribLocation(program_, kPosition, "position");
    glBindAttribLocation(program_, kNormal, "normal");
    glBindAttribLocation(program_, kColor, "color");
    glBindAttribLocation(program_, kUv, "uv");
    glLinkProgram(program_);
    GLint isLinked = GL_FALSE;
    glGetProgramiv(program_, GL_LINK_STATUS, &isLinked);
    if (isLinked == GL_FALSE && problem_.empty()) {
        std::array<char, 1024> text{};
        glGetProgramInfoLog(program_, GLsizei(text.size()), nullptr, text.data());
        problem_ = text.data();
    }
}

GlProgram::~GlProgram() { glDeleteProgram(program_); }

void GlProgram::attach(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint isCompiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &isCompiled);
    if (isCompiled == GL_FALSE) {
        std::array<char, 1024> text{};
        glGetShaderInfoLog(shader, GLsizei(text.size()), nullptr, text.data());
        problem_ = text.data();
    }
    glAttachShader(program_, shader);
    glDeleteShader(shader); // The program keeps it.
}

} // namespace meshcast::render
