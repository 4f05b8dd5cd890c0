#pragma once

#include "Media/Frames/RgbaFrame.h"
#include "Options/PixelDepth.h"
#include "Options/ToolError.h"
#include "Render/ModuleOutput.h"

#include "Runtime/FrameTime.h"
#include "Runtime/TimeSeed.h"

#include <memory>
#include <string>

namespace Halvane::Quorvex::Host {
class EffectSession;
class HostRuntime;
class PluginModule;
class World;
}  // namespace Halvane::Quorvex::Host

namespace Halvane::Quorvex::Tools {

class EffectSettings;

// One effect module driven the way a host drives it: loaded, set up once,
// its parameters declared, then frame by frame a pre-render and a render at
// the frame's time, and set down at the end. Every failure becomes a
// ToolError (runtime) that names the module or the frame and the effect's
// status in words.
//
// What the module prints on standard output is kept aside, and shown on
// standard error before a failure's message; `verbose` passes it on to
// standard error as it comes.
class EffectHost {
public:
    // Loads the module. Throws ToolError naming the path and the loader's
    // reason.
    explicit EffectHost(const std::string& modulePath, bool verbose = false);
    // Sets the effect down if it was set up and not yet set down.
    ~EffectHost();

    EffectHost(const EffectHost&) = delete;
    EffectHost& operator=(const EffectHost&) = delete;

    std::string about();
    // GlobalSetup, then ParamsSetup.
    void setUp();
    // Sets the parameters; a seed moves the time of every frame rendered
    // after, and the parameters' keyframes with it, as a host moves a layer.
    void apply(const EffectSettings& settings, Host::TimeSeed seed = {});
    // Renders one frame at `depth` (the input is converted to it) and
    // returns the output at that depth. `label` names the frame in messages.
    RgbaFrame render(const RgbaFrame& input, PixelDepth depth, const Host::FrameTime& time,
                     const std::string& label);
    // GlobalSetdown; throws when the effect fails it.
    void setDown();

    Host::HostRuntime& runtime() { return *mRuntime; }
    const std::string& modulePath() const { return mModulePath; }
    // What the module printed on standard output so far, unless verbose.
    std::string moduleOutput() const { return mOutput.kept(); }

private:
    ToolError failure(const std::string& command, int status) const;

    std::string mModulePath;
    ModuleOutput mOutput;
    std::unique_ptr<Host::HostRuntime> mRuntime;
    std::unique_ptr<Host::PluginModule> mModule;
    std::unique_ptr<Host::EffectSession> mSession;
    std::unique_ptr<Host::World> mInputWorld;
    std::unique_ptr<Host::World> mOutputWorld;
    Host::TimeSeed mSeed;
    bool mSetUp = false;
};

}  // namespace Halvane::Quorvex::Tools
