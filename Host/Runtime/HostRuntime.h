#pragma once

#include "AEGPSuites.h"
#include "BasicSuite.h"
#include "EffectInterface.h"
#include "EffectSuites.h"
#include "Runtime/FailureInjector.h"
#include "Runtime/FrameTime.h"
#include "Runtime/HandleStore.h"
#include "Runtime/ParameterTrack.h"
#include "Runtime/SuiteRegistry.h"

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Halvane::Quorvex::Host {

class World;

// A substitute for the host application: everything an effect reaches
// through PF_InData and the basic suite. The callbacks of the records are
// plain C functions; those without an effect reference find the runtime as
// the process's active one, so only one runtime may exist at a time.
//
// The member functions below are the host's side of each callback. Tests can
// call them directly, arm failures through failures(), and read the counters
// to see that an effect gives back what it takes.
class HostRuntime {
public:
    // What a script handler answers: a status, and the result and error
    // texts; a missing text leaves its handle null.
    struct ScriptAnswer {
        A_Err status = A_Err_NONE;
        std::optional<std::string> result;
        std::optional<std::string> error;
    };
    using ScriptHandler = std::function<ScriptAnswer(const std::string& script)>;

    static constexpr const char* kNoScriptingError = "scripting is not supported by this host";

    // Throws HostError when another runtime is active.
    HostRuntime();
    ~HostRuntime();

    HostRuntime(const HostRuntime&) = delete;
    HostRuntime& operator=(const HostRuntime&) = delete;

    // The runtime that the C callbacks serve, or null.
    static HostRuntime* active();

    // A fresh PF_InData for a command at `time`, with the callbacks, the basic
    // suite and this runtime as the effect reference.
    PF_InData inData(const FrameTime& time = FrameTime{});
    SPBasicSuite* basicSuite() { return &mBasicSuite; }
    PF_UtilCallbacks* utilCallbacks() { return &mUtilCallbacks; }
    PF_PreRenderCallbacks preRenderCallbacks() const { return mPreRenderCallbacks; }
    PF_SmartRenderCallbacks smartRenderCallbacks() const { return mSmartRenderCallbacks; }

    FailureInjector& failures() { return mFailures; }
    SuiteRegistry& suites() { return mSuites; }
    HandleStore& handles() { return mHandles; }

    // ---- Parameters: index 0 is the input layer, the effect's own from 1.
    PF_Err addParam(PF_ParamIndex index, const PF_ParamDef& definition);
    PF_Err checkoutParam(PF_ParamIndex index, const FrameTime& time, PF_ParamDef& param);
    PF_Err checkinParam(PF_ParamDef& param);
    std::vector<ParameterTrack>& parameters() { return mParameters; }
    // Throws HostError for an index the effect did not add.
    ParameterTrack& parameter(PF_ParamIndex index);
    // The effect's parameter of that name; throws HostError when it has none.
    ParameterTrack& parameter(const std::string& name);
    void clearParameters();
    int openParamCheckouts() const;

    // ---- The frame: the worlds that the render callbacks hand out.
    void setFrameWorlds(World* input, World* output);
    PF_Err checkoutLayer(PF_ParamIndex index, A_long checkoutId, const PF_RenderRequest& request,
                         const FrameTime& time, PF_CheckoutResult& result);
    PF_Err checkoutLayerPixels(A_long checkoutId, PF_EffectWorld** pixels);
    PF_Err checkinLayerPixels(A_long checkoutId);
    PF_Err checkoutOutput(PF_EffectWorld** output);
    // What the last layer checkout asked for.
    struct LayerCheckout {
        PF_ParamIndex index = -1;
        A_long checkoutId = -1;
        PF_RenderRequest request{};
        FrameTime time;
    };
    LayerCheckout lastLayerCheckout() const;
    // Makes the next layer checkouts answer these rectangles instead of the
    // input's; `reset` goes back to the input's.
    void overrideCheckoutRects(const PF_LRect& result, const PF_LRect& maxResult);
    void resetCheckoutRects();
    // The host's end of a frame: every layer checkout is given back.
    void endFrame();
    std::size_t openLayerCheckouts() const;

    // ---- Suites
    PF_Err getPixelFormat(const PF_EffectWorld* world, PF_PixelFormat* format);
    PF_Err getPixelData(PF_EffectWorld* world, PF_PixelPtr pixels, PF_PixelFormat expected,
                        void** result);
    PF_Err iterateFloat(PF_EffectWorld* source, const PF_Rect* area, void* refcon,
                        PF_IteratePixelFloatFunc function, PF_EffectWorld* destination);
    PF_Handle newHandle(A_u_longlong size);
    A_Err registerWithAEGP(const char* name, AEGP_PluginID* id);
    A_Err executeScript(const char* script, AEGP_MemHandle* result, AEGP_MemHandle* error);

    void setScriptHandler(ScriptHandler handler) { mScriptHandler = std::move(handler); }
    AEGP_PluginID pluginId() const { return mPluginId; }
    const std::string& pluginName() const { return mPluginName; }

private:
    void offerSuites();

    SPBasicSuite mBasicSuite{};
    PF_UtilCallbacks mUtilCallbacks{};
    PF_InteractCallbacks mInteractCallbacks{};
    PF_PreRenderCallbacks mPreRenderCallbacks{};
    PF_SmartRenderCallbacks mSmartRenderCallbacks{};

    FailureInjector mFailures;
    SuiteRegistry mSuites;
    HandleStore mHandles;

    std::vector<ParameterTrack> mParameters;
    int mOpenParamCheckouts = 0;

    mutable std::mutex mFrameMutex;
    World* mInputWorld = nullptr;
    World* mOutputWorld = nullptr;
    std::map<A_long, PF_RenderRequest> mLayerCheckouts;
    LayerCheckout mLastLayerCheckout;
    std::optional<std::pair<PF_LRect, PF_LRect>> mCheckoutRects;

    AEGP_PluginID mPluginId = 0;
    std::string mPluginName;
    ScriptHandler mScriptHandler;
};

}  // namespace Halvane::Quorvex::Host
