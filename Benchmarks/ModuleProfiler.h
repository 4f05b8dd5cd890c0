#pragma once

#include "QuorvexProfiling.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Benchmarks {

// The extra functions of the benchmarks' build of the effect module
// (QuorvexProfiled.so), found by name in the loaded module. The module that
// users load has none of them: then available() is false, setSynchronised
// does nothing and there is no profile.
class ModuleProfiler {
public:
    // The module must be loaded already (by a PluginModule of the same path).
    explicit ModuleProfiler(const std::string& modulePath);
    ~ModuleProfiler();

    ModuleProfiler(const ModuleProfiler&) = delete;
    ModuleProfiler& operator=(const ModuleProfiler&) = delete;

    bool available() const { return mLastFrame != nullptr; }
    void setSynchronised(bool synchronised) const;
    // The last SmartRender that ran to its end.
    std::optional<QuorvexFrameProfile> lastFrame() const;
    // Counts in the calling thread's render context. Throws std::runtime_error
    // when the module cannot count or the count fails.
    QuorvexLiveObjects liveObjects() const;

private:
    std::string mModulePath;
    void* mLibrary = nullptr;
    QuorvexSetSynchronisedFunc mSetSynchronised = nullptr;
    QuorvexLastFrameFunc mLastFrame = nullptr;
    QuorvexCountLiveObjectsFunc mCountLiveObjects = nullptr;
};

}  // namespace Halvane::Quorvex::Benchmarks
