#pragma once

#include <GLES3/gl3.h>
#include <string>

namespace meshcast::render {

/// The locations of the vertex attributes in the shaders.
enum Attribute : GLuint { kPosition, kNormal, kColor, kUv };

/// The pair of shaders that draws everything, compiled. Needs a current context.
class GlProgram {
public:
    GlProgram();
    GlProgram(const GlProgram&) = delete;
    GlProgram& operator=(const GlProgram&) = delete;
    ~GlProgram();

    /// The compiler's error message; empty if the program can be used.
    const std::string& problem() const { return problem_; }
    void use() const { glUseProgram(program_); }
    /// The location of a uniform, by its name in shaders.cpp; elements of arrays as "name[2]".
    GLint uniform(const char* name) const { return glGetUniformLocation(program_, name); }

private:
    void attach(GLenum kind, const char* source);

    GLuint program_;
    std::string problem_;
};

} // namespace meshcast::render
