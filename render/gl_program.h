#pragma once

#include <GLES3/gl3.h>
#include <string>

namespace meshcast::render {

/// The places of a vertex's values in the shaders.
enum Attribute : GLuint { kPosition, kNormal, kColor, kUv };

/// The pair of shaders that draws everything, compiled. Needs a current context.
class GlProgram {
public:
    GlProgram();
    GlProgram(const GlProgram&) = delete;
    GlProgram& operator=(const GlProgram&) = delete;
    ~GlProgram();

    /// What the compiler says is wrong; empty when the program can be used.
    const std::string& problem() const { return problem_; }
    void use() const { glUseProgram(program_); }
    /// A variable of the shaders, in the words of shaders.cpp; elements of arrays as "name[2]".
    GLint uniform(const char* name) const { return glGetUniformLocation(program_, name); }

private:
    void attach(GLenum kind, const char* source);

    GLuint program_;
    std::string problem_;
};

} // namespace meshcast::render
