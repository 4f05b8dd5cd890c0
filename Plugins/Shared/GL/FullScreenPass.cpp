#include "GL/FullScreenPass.h"

#include <glbinding/gl/gl.h>

#include <cstdint>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

// Six vertices of x, y, z, u, v.
constexpr GLsizei kStride = 5 * sizeof(float);
constexpr std::uintptr_t kUVOffset = 3 * sizeof(float);

const float* ByteOffset(std::uintptr_t bytes)
{
    return reinterpret_cast<const float*>(bytes);
}

}  // namespace

FullScreenPass::FullScreenPass(const char* vertexSource, const char* fragmentSource)
    : mShader(vertexSource, fragmentSource)
{
    mShader.addAttributeBinding("position", 0);
    mShader.addAttributeBinding("input_uv", 1);
}

FullScreenPass::~FullScreenPass()
{
    const auto own = mVAOs.find(GLPlatform::currentContextId());
    if (own != mVAOs.end()) {
        glDeleteVertexArrays(1, &own->second);
    }
    if (mVBO != 0) {
        glDeleteBuffers(1, &mVBO);
    }
}

void FullScreenPass::draw(GLuint texture, float multiplier)
{
    static const float positions[30] = {
        1.0f, -1.0f, 0.0f, 1.0f, 0.0f,
        1.0f, 1.0f, 0.0f, 1.0f, 1.0f,
        -1.0f, 1.0f, 0.0f, 0.0f, 1.0f,
        -1.0f, 1.0f, 0.0f, 0.0f, 1.0f,
        -1.0f, -1.0f, 0.0f, 0.0f, 0.0f,
        1.0f, -1.0f, 0.0f, 1.0f, 0.0f,
    };

    GLuint& vao = mVAOs[GLPlatform::currentContextId()];
    if (vao == 0) {
        glGenVertexArrays(1, &vao);
        glBindVertexArray(vao);
    }
    if (mVBO == 0) {
        glGenBuffers(1, &mVBO);
        glBindBuffer(GL_ARRAY_BUFFER, mVBO);
        glBufferData(GL_ARRAY_BUFFER, sizeof positions, positions, GL_STATIC_DRAW);
    }

    mShader.useProgram();
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, mVBO);
    mShader.setAttribute3fv(0, ByteOffset(0), kStride);
    mShader.setAttribute2fv(1, ByteOffset(kUVOffset), kStride);
    mShader.setUniformTexture("videoTexture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(texture), 0);
    mShader.setUniform1f("multiplier16bit", multiplier);
    glDrawArrays(GL_TRIANGLES, 0, 6);
    mShader.disableVertexAttributeArray(0);
    mShader.disableVertexAttributeArray(1);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

}  // namespace Halvane::Quorvex
