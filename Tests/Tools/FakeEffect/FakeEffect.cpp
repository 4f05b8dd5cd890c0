// A stand-in for the Quorvex effect drawing FakeEffectFormula.h, made to fail
// or stall by QUORVEX_FAKE_{SETUP,RENDER}_STATUS=N (the status returned),
// QUORVEX_FAKE_FAIL_FROM=K (render fails from frame K on),
// QUORVEX_FAKE_MAX_PIXELS=N (larger frames fail as beyond the GL limits),
// QUORVEX_FAKE_GL_REPORT=1 (an OpenGL report on standard output),
// QUORVEX_FAKE_{FRAME,SETUP}_DELAY_MS=N, and QUORVEX_FAKE_LOG=PATH (a line per
// GlobalSetup and SmartRender).
#include "BasicSuite.h"
#include "Common.h"
#include "EffectInterface.h"
#include "EffectSuites.h"
#include "FakeEffectFormula.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

using namespace Halvane::Quorvex;
using namespace Halvane::Quorvex::Testing;

int gRenderedFrames = 0;

long EnvironmentNumber(const char* name, long fallback)
{
    const char* text = std::getenv(name);
    return text && *text ? std::strtol(text, nullptr, 10) : fallback;
}

void Pause(const char* variable)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(EnvironmentNumber(variable, 0)));
}

void Log(const char* command)
{
    const char* path = std::getenv("QUORVEX_FAKE_LOG");
    if (std::FILE* file = path && *path ? std::fopen(path, "a") : nullptr) {
        std::fprintf(file, "%s\n", command);
        std::fclose(file);
    }
}

PF_Err GlobalSetup(PF_OutData* out_data)
{
    Log("GlobalSetup");
    Pause("QUORVEX_FAKE_SETUP_DELAY_MS");
    out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE;
    out_data->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;
    if (std::getenv("QUORVEX_FAKE_GL_REPORT")) {
        std::printf("shader cache ready\n\nOpenGL Version:  3.3 (Core Profile) Fake 1.0\n"
                    "OpenGL Vendor:   Fake Vendor\nOpenGL Renderer: fakepipe (no pixels harmed)\n"
                    "OpenGL Revision: 42 (gl.xml)\n\n");
    }
    return static_cast<PF_Err>(EnvironmentNumber("QUORVEX_FAKE_SETUP_STATUS", PF_Err_NONE));
}

PF_Err ParamsSetup(PF_InData* in_data, PF_OutData* out_data)
{
    out_data->num_params = kParameterCount;
    PF_ParamDef popup{};
    popup.param_type = PF_Param_POPUP;
    std::strcpy(popup.name, kGlitchTypeName);
    popup.u.pd.value = popup.u.pd.dephault = kGlitchTypeDefault;
    popup.u.pd.num_choices = kGlitchTypeChoices;
    popup.u.pd.u.namesptr = "Block Glitch|Bad TV";
    popup.uu.id = kGlitchTypeId;
    PF_ParamDef slider{};
    slider.param_type = PF_Param_FLOAT_SLIDER;
    std::strcpy(slider.name, kSpeedName);
    slider.u.fs_d.valid_min = slider.u.fs_d.slider_min = kSpeedMin;
    slider.u.fs_d.valid_max = slider.u.fs_d.slider_max = kSpeedMax;
    slider.u.fs_d.value = slider.u.fs_d.dephault = kSpeedDefault;
    slider.uu.id = kSpeedId;
    const PF_Err err = in_data->inter.add_param(in_data->effect_ref, -1, &popup);
    return err ? err : in_data->inter.add_param(in_data->effect_ref, -1, &slider);
}

PF_Err SmartPreRender(PF_InData* in_data, PF_PreRenderExtra* extra)
{
    PF_RenderRequest request = extra->input->output_request;
    PF_CheckoutResult result{};
    if (const PF_Err err = extra->cb->checkout_layer(
            in_data->effect_ref, kInputLayerIndex, kInputCheckoutId, &request, in_data->current_time,
            in_data->time_step, in_data->time_scale, &result)) {
        return err;
    }
    extra->output->result_rect = result.result_rect;
    extra->output->max_result_rect = result.max_result_rect;
    return PF_Err_NONE;
}

// A parameter at the frame's time; once `err` is set, nothing is asked.
PF_ParamDef Parameter(PF_InData* in_data, PF_ParamIndex index, PF_Err& err)
{
    PF_ParamDef param{};
    if (!err) {
        err = in_data->inter.checkout_param(in_data->effect_ref, index, in_data->current_time,
                                            in_data->time_step, in_data->time_scale, &param);
        in_data->inter.checkin_param(in_data->effect_ref, &param);
    }
    return param;
}

template <typename Pixel>
void Draw(PF_EffectWorld* input, PF_EffectWorld* output, int glitchType, int timeStep)
{
    for (A_long y = 0; y < input->height; ++y) {
        const auto* from = reinterpret_cast<const Pixel*>(
            reinterpret_cast<const char*>(input->data) + y * input->rowbytes);
        auto* to =
            reinterpret_cast<Pixel*>(reinterpret_cast<char*>(output->data) + y * output->rowbytes);
        for (A_long x = 0; x < input->width; ++x) {
            to[x] = FakeEffectFormula::Apply(from[x], glitchType, timeStep);
        }
    }
}

PF_Err SmartRender(PF_InData* in_data, PF_SmartRenderExtra* extra)
{
    Log("SmartRender");
    ++gRenderedFrames;
    Pause("QUORVEX_FAKE_FRAME_DELAY_MS");
    if (gRenderedFrames >= EnvironmentNumber("QUORVEX_FAKE_FAIL_FROM", 1)) {
        if (const long status = EnvironmentNumber("QUORVEX_FAKE_RENDER_STATUS", 0)) {
            return static_cast<PF_Err>(status);
        }
    }

    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* output = nullptr;
    if (const PF_Err err =
            extra->cb->checkout_layer_pixels(in_data->effect_ref, kInputCheckoutId, &input)) {
        return err;
    }
    if (const PF_Err err = extra->cb->checkout_output(in_data->effect_ref, &output)) {
        return err;
    }
    const long maxPixels = EnvironmentNumber("QUORVEX_FAKE_MAX_PIXELS", 0);
    if (maxPixels > 0 && static_cast<long>(input->width) * input->height > maxPixels) {
        std::fprintf(stderr, "Fake Quorvex: a frame of %dx%d pixels is larger than the GL limits\n",
                     input->width, input->height);
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (output->width != input->width || output->height != input->height) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }

    const PF_WorldSuite2* worldSuite = nullptr;
    if (in_data->pica_basicP->AcquireSuite(kPFWorldSuite, 2,
                                           reinterpret_cast<const void**>(&worldSuite))) {
        return A_Err_MISSING_SUITE;
    }
    PF_PixelFormat format = 0;
    const PF_Err formatErr = worldSuite->PF_GetPixelFormat(input, &format);
    in_data->pica_basicP->ReleaseSuite(kPFWorldSuite, 2);
    if (formatErr) {
        return formatErr;
    }

    PF_Err err = PF_Err_NONE;
    const int glitchType = Parameter(in_data, kGlitchTypeIndex, err).u.pd.value;
    const auto speed = static_cast<float>(Parameter(in_data, kSpeedIndex, err).u.fs_d.value);
    if (err) {
        return err;
    }
    const int timeStep =
        FakeEffectFormula::TimeStep(in_data->current_time, in_data->time_scale, speed);
    switch (format) {
    case PF_PixelFormat_ARGB32:
        Draw<PF_Pixel8>(input, output, glitchType, timeStep);
        break;
    case PF_PixelFormat_ARGB64:
        Draw<PF_Pixel16>(input, output, glitchType, timeStep);
        break;
    case PF_PixelFormat_ARGB128:
        Draw<PF_PixelFloat>(input, output, glitchType, timeStep);
        break;
    default:
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    return PF_Err_NONE;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EntryPointFunc(
    PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*, void* extra)
{
    switch (cmd) {
    case PF_Cmd_ABOUT:
        in_data->utils->ansi.sprintf(out_data->return_msg, "%s v%d.%d\r%s", "Fake Quorvex", 1, 0,
                                     "A stand-in effect for tests");
        return PF_Err_NONE;
    case PF_Cmd_GLOBAL_SETUP:
        return GlobalSetup(out_data);
    case PF_Cmd_PARAMS_SETUP:
        return ParamsSetup(in_data, out_data);
    case PF_Cmd_SMART_PRE_RENDER:
        return SmartPreRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return SmartRender(in_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}
