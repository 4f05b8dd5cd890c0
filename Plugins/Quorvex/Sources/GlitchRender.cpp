#include "GlitchRender.h"

#include "Common.h"
#include "GL/OpenglShader.h"
#include "Shaders/GlitchShaders.h"

#include <glbinding/gl/gl.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <string>

using namespace gl;

namespace Halvane::Quorvex {

namespace {

// Two triangles over clip space: x, y, then the texture coordinate, which
// follows the position with no flip.
constexpr float kPositions[] = {
    1.0f,  -1.0f, 1.0f, 0.0f,
    1.0f,  1.0f,  1.0f, 1.0f,
    -1.0f, 1.0f,  0.0f, 1.0f,
    -1.0f, 1.0f,  0.0f, 1.0f,
    -1.0f, -1.0f, 0.0f, 0.0f,
    1.0f,  -1.0f, 1.0f, 0.0f,
};
static_assert(sizeof(kPositions) == 96);

constexpr int kPositionAttribute = 0;
constexpr int kTextureCoordinateAttribute = 1;
constexpr int kVertexStride = 4 * sizeof(float);
// Byte offsets into the bound buffer, passed where GL takes a pointer.
const float* const kPositionOffset = nullptr;
const float* const kTextureCoordinateOffset = reinterpret_cast<const float*>(2 * sizeof(float));

// Seconds of layer time, scaled by Speed; all in single precision.
float ShaderTime(const PF_InData* in_data, float speed)
{
    const float time = static_cast<float>(in_data->current_time) / static_cast<float>(in_data->time_scale);
    return time * speed;
}

// Why the shaders' time cannot be made from this Speed at this moment, or
// empty: a time that is not a number draws an undefined picture.
std::string TimeProblem(const PF_InData* in_data, double speed)
{
    if (!std::isfinite(speed)) {
        return "Speed " + std::to_string(speed) + " is not a finite number";
    }
    if (in_data->time_scale == 0) {
        return "the host's time scale is 0";
    }
    if (std::fabs(speed) > std::numeric_limits<float>::max() ||
        !std::isfinite(ShaderTime(in_data, static_cast<float>(speed)))) {
        return "Speed " + std::to_string(speed) + " at " + std::to_string(in_data->current_time) + "/" +
               std::to_string(in_data->time_scale) + " s is beyond single precision";
    }
    return {};
}

OpenglShader* MakeProgram(const char* fragmentSource)
{
    auto* shader = new OpenglShader(Shaders::kGlitchVertex, fragmentSource);
    shader->addAttributeBinding("position", kPositionAttribute);
    shader->addAttributeBinding("input_uv", kTextureCoordinateAttribute);
    return shader;
}

}  // namespace

GlitchRender::GlitchRender()
    : mBlockShader(MakeProgram(Shaders::kBlockGlitchFragment)),
      mBadTVShader(MakeProgram(Shaders::kBadTVFragment))
{
}

GlitchRender::~GlitchRender()
{
    delete mBlockShader;
    delete mBadTVShader;
    // Only the current context's vertex array can be deleted from here; the
    // others end with their contexts.
    auto own = mVertexArrays.find(GLPlatform::currentContextId());
    if (own != mVertexArrays.end()) {
        glDeleteVertexArrays(1, &own->second);
    }
    if (mVBO != 0) {
        glDeleteBuffers(1, &mVBO);
    }
}

A_long GlitchRender::preaprea(PF_InData* in_data, PF_OutData*, PF_SmartRenderExtra*, int,
                              PF_LayerDef*)
{
    PF_ParamDef param;
    std::memset(&param, 0, sizeof(param));
    const PF_Err glitchErr =
        in_data->inter.checkout_param(in_data->effect_ref, kGlitchTypeIndex, in_data->current_time,
                                      in_data->time_step, in_data->time_scale, &param);
    // Popups count from 1; a cleared record after a failed checkout gives -1.
    mGlitchType = param.u.pd.value - 1;
    const PF_Err glitchCheckinErr = in_data->inter.checkin_param(in_data->effect_ref, &param);
    PF_Err err = glitchErr ? glitchErr : glitchCheckinErr;

    std::memset(&param, 0, sizeof(param));
    float speed = 0.0f;
    if (err == PF_Err_NONE) {
        err = in_data->inter.checkout_param(in_data->effect_ref, kSpeedIndex, in_data->current_time,
                                            in_data->time_step, in_data->time_scale, &param);
        const std::string problem = err == PF_Err_NONE ? TimeProblem(in_data, param.u.fs_d.value) : "";
        if (!problem.empty()) {
            std::cerr << "Quorvex: the frame cannot be drawn: " << problem << std::endl;
            err = PF_Err_BAD_CALLBACK_PARAM;
        } else {
            speed = static_cast<float>(param.u.fs_d.value);
        }
    }
    mSpeed = speed;
    const PF_Err speedCheckinErr = in_data->inter.checkin_param(in_data->effect_ref, &param);
    return err ? err : speedCheckinErr;
}

void GlitchRender::draw(PF_InData* in_data, PF_LayerDef* world, unsigned int texture,
                        float multiplier)
{
    if (mVBO == 0) {
        glGenBuffers(1, &mVBO);
        glBindBuffer(GL_ARRAY_BUFFER, mVBO);
        glBufferData(GL_ARRAY_BUFFER, sizeof(kPositions), kPositions, GL_STATIC_DRAW);
    }
    GLuint& vertexArray = mVertexArrays[GLPlatform::currentContextId()];
    if (vertexArray == 0) {
        glGenVertexArrays(1, &vertexArray);
    }

    OpenglShader* shader = mGlitchType == 0 ? mBlockShader : mBadTVShader;
    shader->useProgram();

    glBindVertexArray(vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, mVBO);
    shader->setAttribute2fv(kPositionAttribute, kPositionOffset, kVertexStride);
    shader->setAttribute2fv(kTextureCoordinateAttribute, kTextureCoordinateOffset, kVertexStride);

    shader->setUniformTexture("videoTexture", static_cast<int>(GL_TEXTURE_2D),
                              static_cast<int>(texture), 0);
    shader->setUniform1f("multiplier16bit", multiplier);
    shader->setUniform1f("iTime", ShaderTime(in_data, mSpeed));
    shader->setUniform2f("texSize", static_cast<float>(world->width),
                         static_cast<float>(world->height));

    glDrawArrays(GL_TRIANGLES, 0, 6);

    shader->disableVertexAttributeArray(kPositionAttribute);
    shader->disableVertexAttributeArray(kTextureCoordinateAttribute);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

}  // namespace Halvane::Quorvex
