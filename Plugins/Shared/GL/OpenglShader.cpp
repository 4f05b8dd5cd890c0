#include "GL/OpenglShader.h"

#include "Math/Affine.h"
#include "Math/Color.h"
#include "Math/Mat4.h"
#include "Math/Vec2.h"
#include "Math/Vec3.h"
#include "Math/Vec4.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>
#include <vector>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

// Room for the longest log GL is asked for, and its terminator.
constexpr GLsizei kLogLength = 512;

void dumpShaderErrorS(GLuint shader, const char* stageWord)
{
    char log[kLogLength + 1];
    GLsizei length = 0;
    glGetShaderInfoLog(shader, kLogLength, &length, log);
    log[std::clamp<GLsizei>(length, 0, kLogLength)] = '\0';
    std::printf("Shader %s error:\n%s\n", stageWord, log);
}

void DumpProgramError(GLuint program)
{
    char log[kLogLength + 1];
    GLsizei length = 0;
    glGetProgramInfoLog(program, kLogLength, &length, log);
    log[std::clamp<GLsizei>(length, 0, kLogLength)] = '\0';
    std::printf("Program error:\n%s\n", log);
}

// The four steps of every uniform setter: nothing unbuilt, nothing for a
// name the program lacks.
template <typename... Values>
void SetUniform(GLuint program, const std::string& name, void (*setter)(GLint, Values...), Values... values)
{
    if (program == 0) {
        return;
    }
    const GLint location = glGetUniformLocation(program, name.c_str());
    if (location != -1) {
        setter(location, values...);
    }
}

bool CompileStage(GLuint shader, const std::string& source, const char* stageWord)
{
    const GLchar* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint status = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status != 1) {
        dumpShaderErrorS(shader, stageWord);
        return false;
    }
    return true;
}

}  // namespace

OpenglShader::OpenglShader(const std::string& vertexSource, const std::string& fragmentSource)
    : mVertexSource(vertexSource), mFragmentSource(fragmentSource)
{
}

OpenglShader::OpenglShader(const std::string& vertexSource, const std::string& fragmentSource,
                           const std::string& geometrySource)
    : mVertexSource(vertexSource), mFragmentSource(fragmentSource), mGeometrySource(geometrySource)
{
}

OpenglShader::~OpenglShader() = default;

void OpenglShader::addAttributeBinding(const std::string& name, int index)
{
    mAttributeBindings.emplace(name, index);
}

void OpenglShader::buildShader()
{
    // A failed attempt is not resumed: the next one makes its own objects, so
    // this one leaves none behind.
    const bool hasGeometry = !mGeometrySource.empty();
    const GLShader vertex = GLShader::adopt(glCreateShader(GL_VERTEX_SHADER));
    const GLShader fragment = GLShader::adopt(glCreateShader(GL_FRAGMENT_SHADER));
    const GLShader geometry = GLShader::adopt(hasGeometry ? glCreateShader(GL_GEOMETRY_SHADER) : 0);

    const bool compiled = CompileStage(vertex.name(), mVertexSource, "vert") &&
                          CompileStage(fragment.name(), mFragmentSource, "frag") &&
                          (!hasGeometry || CompileStage(geometry.name(), mGeometrySource, "geo"));
    if (!compiled) {
        return;
    }

    GLProgram program = GLProgram::generate();
    for (const GLShader* stage : {&vertex, &fragment, &geometry}) {
        if (*stage) {
            glAttachShader(program.name(), stage->name());
        }
    }
    for (const auto& [name, index] : mAttributeBindings) {
        glBindAttribLocation(program.name(), static_cast<GLuint>(index), name.c_str());
    }
    glLinkProgram(program.name());
    GLint status = 0;
    glGetProgramiv(program.name(), GL_LINK_STATUS, &status);
    if (status != 1) {
        DumpProgramError(program.name());
        return;
    }
    for (const GLShader* stage : {&vertex, &fragment, &geometry}) {
        if (*stage) {
            glDetachShader(program.name(), stage->name());
        }
    }
    mProgram = std::move(program);
}

void OpenglShader::useProgram()
{
    if (!mProgram) {
        buildShader();
    }
    glUseProgram(mProgram.name());
}

int OpenglShader::getUniformLocation(const std::string& name) const
{
    return !mProgram ? -1 : glGetUniformLocation(mProgram.name(), name.c_str());
}

int OpenglShader::getAttributeLocation(const std::string& name) const
{
    return glGetAttribLocation(mProgram.name(), name.c_str());
}

GLint OpenglShader::attributeLocation(const std::string& name) const
{
    return !mProgram ? -1 : glGetAttribLocation(mProgram.name(), name.c_str());
}

void OpenglShader::setUniform1i(const std::string& name, int v0) const
{
    SetUniform(mProgram.name(), name, glUniform1i, v0);
}

void OpenglShader::setUniform2i(const std::string& name, int v0, int v1) const
{
    SetUniform(mProgram.name(), name, glUniform2i, v0, v1);
}

void OpenglShader::setUniform3i(const std::string& name, int v0, int v1, int v2) const
{
    SetUniform(mProgram.name(), name, glUniform3i, v0, v1, v2);
}

void OpenglShader::setUniform4i(const std::string& name, int v0, int v1, int v2, int v3) const
{
    SetUniform(mProgram.name(), name, glUniform4i, v0, v1, v2, v3);
}

void OpenglShader::setUniform1f(const std::string& name, float v0) const
{
    SetUniform(mProgram.name(), name, glUniform1f, v0);
}

void OpenglShader::setUniform2f(const std::string& name, float v0, float v1) const
{
    SetUniform(mProgram.name(), name, glUniform2f, v0, v1);
}

void OpenglShader::setUniform3f(const std::string& name, float v0, float v1, float v2) const
{
    SetUniform(mProgram.name(), name, glUniform3f, v0, v1, v2);
}

void OpenglShader::setUniform4f(const std::string& name, float v0, float v1, float v2, float v3) const
{
    SetUniform(mProgram.name(), name, glUniform4f, v0, v1, v2, v3);
}

void OpenglShader::setUniform1iv(const std::string& name, const int* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform1iv, count, values);
}

void OpenglShader::setUniform2iv(const std::string& name, const int* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform2iv, count, values);
}

void OpenglShader::setUniform3iv(const std::string& name, const int* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform3iv, count, values);
}

void OpenglShader::setUniform4iv(const std::string& name, const int* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform4iv, count, values);
}

void OpenglShader::setUniform1fv(const std::string& name, const float* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform1fv, count, values);
}

void OpenglShader::setUniform2fv(const std::string& name, const float* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform2fv, count, values);
}

void OpenglShader::setUniform3fv(const std::string& name, const float* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform3fv, count, values);
}

void OpenglShader::setUniform4fv(const std::string& name, const float* values, int count) const
{
    SetUniform(mProgram.name(), name, glUniform4fv, count, values);
}

void OpenglShader::setUniform2f(const std::string& name, const Vec2& value) const
{
    setUniform2f(name, static_cast<float>(value.x), static_cast<float>(value.y));
}

void OpenglShader::setUniform3f(const std::string& name, const Vec3& value) const
{
    setUniform3f(name, static_cast<float>(value.x), static_cast<float>(value.y), static_cast<float>(value.z));
}

void OpenglShader::setUniform4f(const std::string& name, const Vec4& value) const
{
    setUniform4f(name, static_cast<float>(value.x), static_cast<float>(value.y), static_cast<float>(value.z),
                 static_cast<float>(value.w));
}

void OpenglShader::setUniform4f(const std::string& name, const Color& value) const
{
    const double* channels = value.channels;
    setUniform4f(name, static_cast<float>(channels[0]), static_cast<float>(channels[1]),
                 static_cast<float>(channels[2]), static_cast<float>(channels[3]));
}

void OpenglShader::setUniformMatrix3f(const std::string& name, const Affine* matrices, int count) const
{
    std::vector<float> columns;
    columns.reserve(9 * static_cast<std::size_t>(std::max(count, 0)));
    for (int k = 0; k < count; ++k) {
        const Affine& m = matrices[k];
        for (double value : {m.s0, m.s3, 0.0, m.s1, m.s4, 0.0, m.s2, m.s5, 1.0}) {
            columns.push_back(static_cast<float>(value));
        }
    }
    SetUniform(mProgram.name(), name, glUniformMatrix3fv, count, GL_FALSE, static_cast<const GLfloat*>(columns.data()));
}

void OpenglShader::setUniformMatrix4f(const std::string& name, const Mat4& matrix, int count) const
{
    GLfloat elements[16];
    std::transform(std::begin(matrix.elements), std::end(matrix.elements), elements,
                   [](double value) { return static_cast<GLfloat>(value); });
    SetUniform(mProgram.name(), name, glUniformMatrix4fv, std::min(count, 1), GL_FALSE,
               static_cast<const GLfloat*>(elements));
}

void OpenglShader::setUniformTexture(const std::string& name, int target, int texture, int unit) const
{
    if (!mProgram) {
        return;
    }
    glActiveTexture(static_cast<GLenum>(static_cast<unsigned int>(GL_TEXTURE0) + static_cast<unsigned int>(unit)));
    glBindTexture(static_cast<GLenum>(target), static_cast<GLuint>(texture));
    setUniform1i(name, unit);
}

void OpenglShader::pointAttribute(GLint index, GLint size, GLenum type, const void* data, int stride) const
{
    glEnableVertexAttribArray(static_cast<GLuint>(index));
    glVertexAttribPointer(static_cast<GLuint>(index), size, type, GL_FALSE, stride, data);
}

void OpenglShader::pointNamedAttribute(const std::string& name, GLint size, const float* data, int stride) const
{
    if (const GLint location = attributeLocation(name); location != -1) {
        pointAttribute(location, size, GL_FLOAT, data, stride);
    }
}

void OpenglShader::setAttribute1iv(int index, const int* data, int stride) const
{
    if (index != -1 && mProgram) {
        pointAttribute(index, 1, GL_INT, data, stride);
    }
}

void OpenglShader::setAttribute1fv(const std::string& name, const float* data, int stride) const
{
    pointNamedAttribute(name, 1, data, stride);
}

void OpenglShader::setAttribute1fv(int index, const float* data, int stride) const
{
    if (index != -1 && mProgram) {
        pointAttribute(index, 1, GL_FLOAT, data, stride);
    }
}

void OpenglShader::setAttribute2fv(const std::string& name, const float* data, int stride) const
{
    pointNamedAttribute(name, 2, data, stride);
}

void OpenglShader::setAttribute2fv(int index, const float* data, int stride) const
{
    if (mProgram) {
        pointAttribute(index, 2, GL_FLOAT, data, stride);
    }
}

void OpenglShader::setAttribute3fv(const std::string& name, const float* data, int stride) const
{
    pointNamedAttribute(name, 3, data, stride);
}

void OpenglShader::setAttribute3fv(int index, const float* data, int stride) const
{
    if (mProgram) {
        pointAttribute(index, 3, GL_FLOAT, data, stride);
    }
}

void OpenglShader::setAttribute4fv(const std::string& name, const float* data, int stride) const
{
    pointNamedAttribute(name, 4, data, stride);
}

void OpenglShader::setAttribute4fv(int index, const float* data, int stride) const
{
    if (index != -1 && mProgram) {
        pointAttribute(index, 4, GL_FLOAT, data, stride);
    }
}

void OpenglShader::disableVertexAttributeArray(const std::string& name) const
{
    if (const GLint location = attributeLocation(name); location != -1) {
        glDisableVertexAttribArray(static_cast<GLuint>(location));
    }
}

void OpenglShader::disableVertexAttributeArray(int index) const
{
    if (mProgram) {
        glDisableVertexAttribArray(static_cast<GLuint>(index));
    }
}

}  // namespace Halvane::Quorvex
