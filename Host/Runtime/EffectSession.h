#pragma once

#include "EffectInterface.h"
#include "Runtime/FrameTime.h"

#include <string>

namespace Halvane::Quorvex::Host {

class HostRuntime;
class PluginModule;
class World;

// Drives one loaded effect through its commands the way a host does, with
// the records each command needs, and keeps what the effect answered.
class EffectSession {
public:
    EffectSession(HostRuntime& host, const PluginModule& module);

    // Sends any command with a fresh PF_OutData; `extra` as the command wants.
    PF_Err send(PF_Cmd cmd, PF_InData& in_data, void* extra = nullptr);

    PF_Err about(std::string& text);
    PF_Err globalSetup();
    PF_Err paramsSetup();
    PF_Err globalSetdown();

    // The handles the next commands pass as global and sequence data.
    void setGlobalData(PF_Handle handle) { mGlobalData = handle; }
    void setSequenceData(PF_Handle handle) { mSequenceData = handle; }

    // The pre-render of a frame: asks for `request` of the output at `time`.
    // `output` comes in as the host's rectangles and leaves as the effect's.
    PF_Err smartPreRender(const PF_LRect& request, const FrameTime& time,
                          PF_PreRenderOutput& output, A_short bitDepth = 8);
    // A whole frame: pre-render of the output's bounds, then the render,
    // with `input` as the layer and `output` as the destination.
    PF_Err renderFrame(World& input, World& output, const FrameTime& time);

    // The out-data of the last command.
    const PF_OutData& outData() const { return mOutData; }
    // The message the effect asked the host to show after the last command,
    // or empty.
    std::string errorMessage() const;

    HostRuntime& host() { return mHost; }

private:
    HostRuntime& mHost;
    const PluginModule& mModule;
    PF_OutData mOutData{};
    PF_Handle mGlobalData = nullptr;
    PF_Handle mSequenceData = nullptr;
};

// Words for an effect's status: "out of memory", "missing suite", ...
std::string DescribeEffectError(PF_Err err);

}  // namespace Halvane::Quorvex::Host
