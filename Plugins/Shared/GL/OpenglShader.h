#pragma once

#include "GL/GLObject.h"

#include <glbinding/gl/types.h>

#include <map>
#include <string>

namespace Halvane::Quorvex {

class Affine;
class Color;
class Mat4;
class Vec2;
class Vec3;
class Vec4;

// One GLSL program: its source text, its attribute bindings and named
// setters. Construction makes no GL call; the program is built at the first
// useProgram, in whichever context is current then, and serves every
// context of that share group. A failed build prints its log to standard
// output, leaves the object unbuilt (every setter then does nothing) and is
// tried again, from scratch, at the next useProgram.
//
// Setters do not select the program: call useProgram first. Names the
// program does not have are skipped silently.
class OpenglShader {
public:
    OpenglShader(const std::string& vertexSource, const std::string& fragmentSource);
    // An empty geometry source means a program of two stages.
    OpenglShader(const std::string& vertexSource, const std::string& fragmentSource,
                 const std::string& geometrySource);
    // A context of the program's share group must be current if it was built.
    virtual ~OpenglShader();

    OpenglShader(const OpenglShader&) = delete;
    OpenglShader& operator=(const OpenglShader&) = delete;

    // Takes effect at the next build only; a name bound twice keeps its first
    // index.
    void addAttributeBinding(const std::string& name, int index);
    void buildShader();
    void useProgram();

    // -1 before a successful build.
    int getUniformLocation(const std::string& name) const;
    // Asks GL even before a build (GL then answers -1).
    int getAttributeLocation(const std::string& name) const;

    void setUniform1i(const std::string& name, int v0) const;
    void setUniform2i(const std::string& name, int v0, int v1) const;
    void setUniform3i(const std::string& name, int v0, int v1, int v2) const;
    void setUniform4i(const std::string& name, int v0, int v1, int v2, int v3) const;
    void setUniform1f(const std::string& name, float v0) const;
    void setUniform2f(const std::string& name, float v0, float v1) const;
    void setUniform3f(const std::string& name, float v0, float v1, float v2) const;
    void setUniform4f(const std::string& name, float v0, float v1, float v2, float v3) const;
    void setUniform1iv(const std::string& name, const int* values, int count) const;
    void setUniform2iv(const std::string& name, const int* values, int count) const;
    void setUniform3iv(const std::string& name, const int* values, int count) const;
    void setUniform4iv(const std::string& name, const int* values, int count) const;
    void setUniform1fv(const std::string& name, const float* values, int count) const;
    void setUniform2fv(const std::string& name, const float* values, int count) const;
    void setUniform3fv(const std::string& name, const float* values, int count) const;
    void setUniform4fv(const std::string& name, const float* values, int count) const;

    // The math types, each double narrowed to float; a colour goes in storage order.
    void setUniform2f(const std::string& name, const Vec2& value) const;
    void setUniform3f(const std::string& name, const Vec3& value) const;
    void setUniform4f(const std::string& name, const Vec4& value) const;
    void setUniform4f(const std::string& name, const Color& value) const;
    // `count` 2D transforms, each as the 3x3 matrix with the columns (s0, s3, 0),
    // (s1, s4, 0) and (s2, s5, 1).
    void setUniformMatrix3f(const std::string& name, const Affine* matrices, int count) const;
    // One matrix in its own column-major order. GL is never handed more than that one,
    // so a count above 1 cannot make it read past the matrix.
    void setUniformMatrix4f(const std::string& name, const Mat4& matrix, int count) const;

    // Activates texture unit `unit`, binds `texture` to `target` there and
    // points the sampler `name` at the unit. Once built, the unit and the
    // binding are set even when the program has no such sampler.
    void setUniformTexture(const std::string& name, int target, int texture, int unit) const;

    // Enable the attribute array, then point it at `data`: a byte offset into
    // the bound GL_ARRAY_BUFFER, as the renderers use it. The stride is in
    // bytes. Index forms skip an index of -1 except setAttribute2fv and
    // setAttribute3fv, which hand it to GL.
    void setAttribute1iv(int index, const int* data, int stride) const;
    void setAttribute1fv(const std::string& name, const float* data, int stride) const;
    void setAttribute1fv(int index, const float* data, int stride) const;
    void setAttribute2fv(const std::string& name, const float* data, int stride) const;
    void setAttribute2fv(int index, const float* data, int stride) const;
    void setAttribute3fv(const std::string& name, const float* data, int stride) const;
    void setAttribute3fv(int index, const float* data, int stride) const;
    void setAttribute4fv(const std::string& name, const float* data, int stride) const;
    void setAttribute4fv(int index, const float* data, int stride) const;

    void disableVertexAttributeArray(const std::string& name) const;
    void disableVertexAttributeArray(int index) const;

    // The GL program name; 0 until a build succeeds.
    gl::GLuint program() const { return mProgram.name(); }

    // Forgets the program without deleting it, for a caller that cannot know
    // which context is current (a module unloaded without set-down).
    void abandonGLNames() noexcept { static_cast<void>(mProgram.release()); }

private:
    // The location of attribute `name`, or -1 when unbuilt or absent.
    gl::GLint attributeLocation(const std::string& name) const;
    void pointAttribute(gl::GLint index, gl::GLint size, gl::GLenum type, const void* data, int stride) const;
    // pointAttribute for attribute `name`, skipped when unbuilt or absent.
    void pointNamedAttribute(const std::string& name, gl::GLint size, const float* data, int stride) const;

    std::string mVertexSource;
    std::string mFragmentSource;
    std::string mGeometrySource;
    GLProgram mProgram;
    std::map<std::string, int> mAttributeBindings;
};

}  // namespace Halvane::Quorvex
