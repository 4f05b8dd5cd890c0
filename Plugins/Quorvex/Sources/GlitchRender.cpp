#include "GlitchRender.h"

#include "Common.h"
#include "Shaders/GlitchShaders.h"

#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <string>

namespace Halvane::Quorvex {

namespace {

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
    const auto width = static_cast<float>(world->width);
    const auto height = static_cast<float>(world->height);
    FullScreenPass& pass = mGlitchType == 0 ? mBlockPass : mBadTVPass;
    pass.draw(texture, multiplier, [&](const OpenglShader& shader) {
        shader.setUniform1f("iTime", time);
        shader.setUniform2f("texSize", width, height);
    });
}

}  // namespace Halvane::Quorvex
