#include "GL/FullScreenPass.h"

#include <glbinding/gl/gl.h>

#include <cstdint>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

// Two triangles over clip space, six vertices of x, y, z, u, v.
constexpr float kQuad[30] = {
    1.0f,  -1.0f, 0.0f, 1.0f, 0.0f,
    1.0f,  1.0f,  0.0f, 1.0f, 1.0f,
    -1.0f, 1.0f,  0.0f, 0.0f, 1.0f,
    -1.0f, 1.0f,  0.0f, 0.0f, 1.0f,
    -1.0f, -1.0f, 0.0f, 0.0f, 0.0f,
    1.0f,  -1.0f, 0.0f, 1.0f, 0.0f,
};
constexpr int kPositionAttribute = 0;
constexpr int kTextureCoordinateAttribute = 1;
constexpr GLsizei kStride = 5 * sizeof(float);
constexpr std::uintptr_t kUVOffset = 3 * sizeof(float);

// A byte offset into the bound buffer, passed where GL takes a pointer.
const float* ByteOffset(std::uintptr_t bytes)
{
    return reinterpret_cast<const float*>(bytes);
}

}  // namespace

FullScreenPass::FullScreenPass(const char* vertexSource, const char* fragmentSource)
    : mShader(vertexSource, fragmentSource)
{
    mShader.addAttributeBinding("position", kPositionAttribute);
    mShader.addAttributeBinding("input_uv", kTextureCoordinateAttribute);
}

FullScreenPass::~FullScreenPass()
{
    // Another context's vertex array is a name of that context only: deleting
    // it from here would delete whatever this context calls by that name.
    const GLPlatform::ContextId current = GLPlatform::currentContextId();
    for (auto& [context, vertexArray] : mVertexArrays) {
        if (context != current) {
            vertexArray.release();
        }
    }
}

void FullScreenPass::abandonGLNames() noexcept
{
    mShader.abandonGLNames();
    for (auto& entry : mVertexArrays) {
        static_cast<void>(entry.second.release());
    }
    static_cast<void>(mVertexBuffer.release());
}

void FullScreenPass::draw(GLuint texture, float multiplier, const UniformSetter& moreUniforms)
{
    GLVertexArray& vertexArray = mVertexArrays[GLPlatform::currentContextId()];
    if (!vertexArray) {
        vertexArray = GLVertexArray::generate();
    }
    if (!mVertexBuffer) {
        mVertexBuffer = GLBuffer::generate();
        glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer.name());
        glBufferData(GL_ARRAY_BUFFER, sizeof kQuad, kQuad, GL_STATIC_DRAW);
    }

    mShader.useProgram();
    glBindVertexArray(vertexArray.name());
    glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer.name());
    mShader.setAttribute3fv(kPositionAttribute, ByteOffset(0), kStride);
    mShader.setAttribute2fv(kTextureCoordinateAttribute, ByteOffset(kUVOffset), kStride);
    mShader.setUniformTexture("videoTexture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(texture), 0);
    mShader.setUniform1f("multiplier16bit", multiplier);
    if (moreUniforms) {
        moreUniforms(mShader);
    }
    glDrawArrays(GL_TRIANGLES, 0, 6);
    mShader.disableVertexAttributeArray(kPositionAttribute);
    mShader.disableVertexAttributeArray(kTextureCoordinateAttribute);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

}  // namespace Halvane::Quorvex
