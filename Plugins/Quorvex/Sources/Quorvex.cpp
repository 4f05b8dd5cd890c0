#include "Quorvex.h"

#include "AEGPSuites.h"
#include "Common.h"
#include "EffectSuites.h"
#include "Helper/SuiteScoper.h"

#include <cstring>
#include <new>

namespace Halvane::Quorvex {

namespace {

AEGP_PluginID mPluginID = 0;

bool IsEmptyRect(const PF_LRect* rect)
{
    return rect->left >= rect->right || rect->top >= rect->bottom;
}

// Grows `destination` to cover `source`. An empty destination takes the
// source as it is, even an empty one.
void UnionRect(const PF_LRect* source, PF_LRect* destination)
{
    if (IsEmptyRect(destination)) {
        *destination = *source;
    } else if (!IsEmptyRect(source)) {
        destination->left = source->left < destination->left ? source->left : destination->left;
        destination->top = source->top < destination->top ? source->top : destination->top;
        destination->right = source->right > destination->right ? source->right : destination->right;
        destination->bottom =
            source->bottom > destination->bottom ? source->bottom : destination->bottom;
    }
}

PF_Err About(PF_InData* in_data, PF_OutData* out_data)
{
    SuiteScoper<PF_ANSICallbacksSuite1> ansiSuite(in_data, kPFANSISuite, 1);
    ansiSuite->sprintf(out_data->return_msg, "%s v%d.%d\r%s", kEffectName, kMajorVersion,
                       kMinorVersion, kEffectDescription);
    return PF_Err_NONE;
}

PF_Err GlobalSetup(PF_InData* in_data, PF_OutData* out_data)
{
    out_data->my_version =
        PF_VERSION(kMajorVersion, kMinorVersion, kBugVersion, kStageVersion, kBuildVersion);
    out_data->out_flags |= kOutFlags;
    out_data->out_flags2 = kOutFlags2;

    SuiteScoper<AEGP_UtilitySuite6> utilitySuite(in_data, kAEGPUtilitySuite, 13);
    utilitySuite->AEGP_RegisterWithAEGP(nullptr, kEffectName, &mPluginID);
    return PF_Err_NONE;
}

PF_Err GlobalSetdown(PF_InData* in_data, PF_OutData* out_data)
{
    if (in_data->sequence_data) {
        in_data->utils->host_dispose_handle(in_data->sequence_data);
        out_data->sequence_data = nullptr;
    }
    if (in_data->global_data) {
        in_data->utils->host_dispose_handle(in_data->global_data);
    }
    return PF_Err_NONE;
}

PF_Err ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*)
{
    static const char* const kGlitchTypeStr = "Block Glitch|Bad TV";

    out_data->num_params = kParameterCount;

    PF_ParamDef def;
    std::memset(&def, 0, sizeof(def));
    def.param_type = PF_Param_POPUP;
    in_data->utils->ansi.strcpy(def.name, kGlitchTypeName);
    def.u.pd.value = kGlitchTypeDefault;
    def.u.pd.dephault = kGlitchTypeDefault;
    def.u.pd.num_choices = kGlitchTypeChoices;
    def.u.pd.u.namesptr = kGlitchTypeStr;
    def.uu.id = kGlitchTypeId;
    if (const PF_Err err = in_data->inter.add_param(in_data->effect_ref, -1, &def)) {
        return err;
    }

    std::memset(&def, 0, sizeof(def));
    def.param_type = PF_Param_FLOAT_SLIDER;
    in_data->utils->ansi.strcpy(def.name, kSpeedName);
    def.u.fs_d.valid_min = kSpeedMin;
    def.u.fs_d.valid_max = kSpeedMax;
    def.u.fs_d.slider_min = kSpeedMin;
    def.u.fs_d.slider_max = kSpeedMax;
    def.u.fs_d.value = kSpeedDefault;
    def.u.fs_d.dephault = kSpeedDefault;
    def.u.fs_d.precision = PF_Precision_TENTHS;
    def.u.fs_d.display_flags = 0;
    def.u.fs_d.fs_flags = 0;
    def.u.fs_d.curve_tolerance = kSpeedCurveTolerance;
    def.uu.id = kSpeedId;
    return in_data->inter.add_param(in_data->effect_ref, -1, &def);
}

// The effect needs its input exactly where the host wants output: no border,
// no change of field or channels.
PF_Err SmartPreRender(PF_InData* in_data, PF_PreRenderExtra* extra)
{
    PF_RenderRequest request = extra->input->output_request;
    PF_CheckoutResult result;
    std::memset(&result, 0, sizeof(result));
    if (const PF_Err err = extra->cb->checkout_layer(
            in_data->effect_ref, kInputLayerIndex, kInputCheckoutId, &request,
            in_data->current_time, in_data->time_step, in_data->time_scale, &result)) {
        return err;
    }
    UnionRect(&result.result_rect, &extra->output->result_rect);
    UnionRect(&result.max_result_rect, &extra->output->max_result_rect);
    return PF_Err_NONE;
}

PF_Err SmartRender(PF_InData*, PF_OutData*, PF_SmartRenderExtra*)
{
    return PF_Err_NONE;
}

PF_Err Dispatch(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                PF_LayerDef* output, void* extra)
{
    switch (cmd) {
    case PF_Cmd_ABOUT:
        return About(in_data, out_data);
    case PF_Cmd_GLOBAL_SETUP:
        return GlobalSetup(in_data, out_data);
    case PF_Cmd_GLOBAL_SETDOWN:
        return GlobalSetdown(in_data, out_data);
    case PF_Cmd_PARAMS_SETUP:
        return ParamsSetup(in_data, out_data, params, output);
    case PF_Cmd_SMART_PRE_RENDER:
        return SmartPreRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return SmartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}

}  // namespace

}  // namespace Halvane::Quorvex

PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                      PF_LayerDef* output, void* extra)
{
    try {
        return Halvane::Quorvex::Dispatch(cmd, in_data, out_data, params, output, extra);
    } catch (int) {
        return PF_Err_BAD_CALLBACK_PARAM;
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
}
