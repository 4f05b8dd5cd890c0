#pragma once

#include "EffectInterface.h"

#include <string>

namespace Halvane::Quorvex::Host {

// An effect module loaded from a file, and its entry point. The module stays
// mapped until the process ends, as in a real host: the GL driver and the
// binding library keep per-thread state that points into it.
class PluginModule {
public:
    // Throws HostError naming the path and the loader's reason when the file
    // does not load or has no entry point.
    explicit PluginModule(const std::string& path);
    // An effect linked into the host itself: nothing is loaded, `name`
    // stands for the path in messages.
    PluginModule(const std::string& name, PF_EntryPointFunc entryPoint);
    ~PluginModule();

    PluginModule(const PluginModule&) = delete;
    PluginModule& operator=(const PluginModule&) = delete;

    PF_Err call(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                PF_LayerDef* output, void* extra) const;

    const std::string& path() const { return mPath; }

private:
    std::string mPath;
    void* mLibrary = nullptr;
    PF_EntryPointFunc mEntryPoint = nullptr;
};

}  // namespace Halvane::Quorvex::Host
