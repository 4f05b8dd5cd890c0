#pragma once

#include "Commands/OpenGLReport.h"
#include "ModuleProfiler.h"

#include "Runtime/EffectSession.h"
#include "Runtime/FrameTime.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"

#include <string>

namespace Halvane::Quorvex::Host {
class World;
}

namespace Halvane::Quorvex::Benchmarks {

// The effect module in a host runtime of its own, set up as the command-line
// host sets it up, rendering straight between worlds that the caller keeps:
// nothing but the effect's own work lies between the start and the end of a
// frame. Set down when destroyed.
class LoadedEffect {
public:
    // Loads and sets up the module and renders one small frame, so that the
    // render context exists before anything is timed; what the module prints
    // meanwhile is kept as its OpenGL report. Throws std::runtime_error
    // naming the module and the failing command.
    explicit LoadedEffect(const std::string& modulePath);
    ~LoadedEffect();

    LoadedEffect(const LoadedEffect&) = delete;
    LoadedEffect& operator=(const LoadedEffect&) = delete;

    // 1 for "Block Glitch", 2 for "Bad TV".
    void setGlitchType(int popupValue);
    // Throws std::runtime_error naming the effect's status.
    void render(Host::World& input, Host::World& output, const Host::FrameTime& time);

    Host::HostRuntime& host() { return mHost; }
    const ModuleProfiler& profiler() const { return mProfiler; }
    const Tools::OpenGLReport& openGL() const { return mOpenGL; }
    const std::string& modulePath() const { return mModule.path(); }

private:
    void check(const std::string& command, PF_Err status) const;

    Host::HostRuntime mHost;
    Host::PluginModule mModule;
    Host::EffectSession mSession;
    ModuleProfiler mProfiler;
    Tools::OpenGLReport mOpenGL;
};

}  // namespace Halvane::Quorvex::Benchmarks
