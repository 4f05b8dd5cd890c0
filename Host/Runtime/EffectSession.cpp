#include "Runtime/EffectSession.h"

#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"

#include <cstring>

namespace Halvane::Quorvex::Host {

namespace {

A_short BitDepth(PF_PixelFormat format)
{
    switch (format) {
    case PF_PixelFormat_ARGB64:
        return 16;
    case PF_PixelFormat_ARGB128:
        return 32;
    default:
        return 8;
    }
}

}  // namespace

EffectSession::EffectSession(HostRuntime& host, const PluginModule& module)
    : mHost(host), mModule(module)
{
}

PF_Err EffectSession::send(PF_Cmd cmd, PF_InData& in_data, void* extra)
{
    mOutData = PF_OutData{};
    mOutData.global_data = mGlobalData;
    mOutData.sequence_data = mSequenceData;
    in_data.global_data = mGlobalData;
    in_data.sequence_data = mSequenceData;
    const PF_Err err = mModule.call(cmd, &in_data, &mOutData, nullptr, nullptr, extra);
    mGlobalData = mOutData.global_data;
    mSequenceData = mOutData.sequence_data;
    return err;
}

PF_Err EffectSession::about(std::string& text)
{
    PF_InData in_data = mHost.inData();
    const PF_Err err = send(PF_Cmd_ABOUT, in_data);
    text.assign(mOutData.return_msg, strnlen(mOutData.return_msg, sizeof(mOutData.return_msg)));
    return err;
}

PF_Err EffectSession::globalSetup()
{
    PF_InData in_data = mHost.inData();
    return send(PF_Cmd_GLOBAL_SETUP, in_data);
}

PF_Err EffectSession::paramsSetup()
{
    mHost.clearParameters();
    PF_InData in_data = mHost.inData();
    return send(PF_Cmd_PARAMS_SETUP, in_data);
}

PF_Err EffectSession::globalSetdown()
{
    PF_InData in_data = mHost.inData();
    const PF_Err err = send(PF_Cmd_GLOBAL_SETDOWN, in_data);
    // Disposing of its global and sequence data is the effect's own business
    // here; whatever it leaves open shows in the handle store.
    mGlobalData = nullptr;
    mSequenceData = nullptr;
    return err;
}

PF_Err EffectSession::smartPreRender(const PF_LRect& request, const FrameTime& time,
                                     PF_PreRenderOutput& output, A_short bitDepth)
{
    PF_PreRenderInput input{};
    input.output_request.rect = request;
    input.output_request.field = PF_Field_FRAME;
    input.output_request.channel_mask = PF_ChannelMask_ARGB;
    input.bitdepth = bitDepth;
    PF_PreRenderOutput result = output;
    PF_PreRenderCallbacks callbacks = mHost.preRenderCallbacks();
    PF_PreRenderExtra extra{&input, &result, &callbacks};
    PF_InData in_data = mHost.inData(time);
    const PF_Err err = send(PF_Cmd_SMART_PRE_RENDER, in_data, &extra);
    output = result;
    return err;
}

PF_Err EffectSession::renderFrame(World& input, World& output, const FrameTime& time)
{
    mHost.setFrameWorlds(&input, &output);
    PF_PreRenderOutput preRenderOutput{};
    const PF_LRect bounds{0, 0, output.width(), output.height()};
    PF_Err err = smartPreRender(bounds, time, preRenderOutput, BitDepth(input.format()));
    if (err == PF_Err_NONE) {
        PF_SmartRenderInput renderInput{};
        renderInput.output_request.rect = bounds;
        renderInput.output_request.channel_mask = PF_ChannelMask_ARGB;
        renderInput.bitdepth = BitDepth(input.format());
        renderInput.pre_render_data = preRenderOutput.pre_render_data;
        PF_SmartRenderCallbacks callbacks = mHost.smartRenderCallbacks();
        PF_SmartRenderExtra extra{&renderInput, &callbacks};
        PF_InData in_data = mHost.inData(time);
        err = send(PF_Cmd_SMART_RENDER, in_data, &extra);
    }
    if (preRenderOutput.delete_pre_render_data_func && preRenderOutput.pre_render_data) {
        preRenderOutput.delete_pre_render_data_func(preRenderOutput.pre_render_data);
    }
    mHost.endFrame();
    mHost.setFrameWorlds(nullptr, nullptr);
    return err;
}

std::string EffectSession::errorMessage() const
{
    if (!(mOutData.out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE)) {
        return std::string();
    }
    return std::string(mOutData.return_msg, strnlen(mOutData.return_msg, sizeof(mOutData.return_msg)));
}

std::string DescribeEffectError(PF_Err err)
{
    switch (err) {
    case PF_Err_NONE:
        return "no error";
    case PF_Err_OUT_OF_MEMORY:
        return "out of memory";
    case A_Err_MISSING_SUITE:
        return "a host suite is missing";
    case PF_Err_INVALID_INDEX:
        return "invalid index";
    case PF_Err_UNRECOGNIZED_PARAM_TYPE:
        return "unrecognized parameter type";
    case PF_Err_BAD_CALLBACK_PARAM:
        return "bad callback parameter";
    case PF_Interrupt_CANCEL:
        return "cancelled";
    default:
        return "error " + std::to_string(err);
    }
}

}  // namespace Halvane::Quorvex::Host
