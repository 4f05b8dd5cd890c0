#include "GlitchRender.h"

#include "Common.h"
#include "GlitchFrameValues.h"
#include "Shaders/GlitchShaders.h"

#include <glbinding/gl/gl.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <string>

namespace Halvane::Quorvex {

namespace {

using namespace gl;

// The texture unit of Bad TV's row table; the picture is on unit 0.
constexpr int kRowTableUnit = 1;

// Seconds of layer time, scaled by Speed; all in single precision.
float ShaderTime(const PF_InData* in_data, float speed)
{
    const float seconds = static_cast<float>(in_data->current_time) / static_cast<float>(in_data->time_scale);
    return GlitchFrameValues::shaderTime(seconds, speed);
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

}  // namespace

GlitchRender::GlitchRender()
    : mBlockPass(Shaders::kGlitchVertex, Shaders::kBlockGlitchFragment),
      mBadTVPass(Shaders::kGlitchVertex, Shaders::kBadTVFragment)
{
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
    const float time = ShaderTime(in_data, mSpeed);
    if (mGlitchType == 0) {
        const BlockGlitchValues values = GlitchFrameValues::blockGlitch(time);
        mBlockPass.draw(texture, multiplier, [&](const OpenglShader& shader) {
            float edges[2 * BlockGlitchValues::kBands];
            for (int band = 0; band < BlockGlitchValues::kBands; ++band) {
                edges[2 * band] = values.bandBottom[band];
                edges[2 * band + 1] = values.bandTop[band];
            }
            shader.setUniform2fv("bandEdges", edges, BlockGlitchValues::kBands);
            shader.setUniform1fv("bandShift", values.bandShift.data(), BlockGlitchValues::kBands);
            shader.setUniform1i("offsetChannel", values.channel);
            shader.setUniform2f("channelOffset", values.channelOffset[0], values.channelOffset[1]);
        });
        return;
    }
    const BadTVValues values = GlitchFrameValues::badTV(time, world->height);
    const GLuint rowTable = uploadRowTable(values);
    mBadTVPass.draw(texture, multiplier, [&](const OpenglShader& shader) {
        shader.setUniform1f("rnd", values.rnd);
        shader.setUniform2f("texSize", static_cast<float>(world->width), static_cast<float>(world->height));
        shader.setUniformTexture("rowTable", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(rowTable),
                                 kRowTableUnit);
        glActiveTexture(GL_TEXTURE0);
    });
}

GLuint GlitchRender::uploadRowTable(const BadTVValues& values)
{
    static_assert(sizeof(BadTVRow) == 2 * sizeof(float), "the table's texels are two floats");
    const auto rows = static_cast<GLsizei>(values.rows.size());
    glActiveTexture(GL_TEXTURE0 + kRowTableUnit);
    if (!mRowTable || rows != mRowTableRows) {
        mRowTable = GLTexture::generate();
        mRowTableRows = rows;
        glBindTexture(GL_TEXTURE_2D, mRowTable.name());
        // Read with texelFetch only; the filter makes the texture complete.
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RG32F, rows, 1, 0, GL_RG, GL_FLOAT, values.rows.data());
    } else {
        glBindTexture(GL_TEXTURE_2D, mRowTable.name());
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, rows, 1, GL_RG, GL_FLOAT, values.rows.data());
    }
    glActiveTexture(GL_TEXTURE0);
    return mRowTable.name();
}

}  // namespace Halvane::Quorvex
