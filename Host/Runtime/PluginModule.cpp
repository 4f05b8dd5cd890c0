#include "Runtime/PluginModule.h"

#include "Runtime/HostError.h"

#include <dlfcn.h>

namespace Halvane::Quorvex::Host {

namespace {

std::string LoaderMessage()
{
    const char* message = dlerror();
    return message ? message : "no reason given";
}

}  // namespace

PluginModule::PluginModule(const std::string& path) : mPath(path)
{
    dlerror();
    mLibrary = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!mLibrary) {
        throw HostError("cannot load effect module '" + path + "': " + LoaderMessage());
    }
    dlerror();
    void* symbol = dlsym(mLibrary, PF_ENTRY_POINT_NAME);
    if (!symbol) {
        const std::string reason = LoaderMessage();
        dlclose(mLibrary);
        throw HostError("effect module '" + path + "' has no " PF_ENTRY_POINT_NAME ": " + reason);
    }
    mEntryPoint = reinterpret_cast<PF_EntryPointFunc>(symbol);
}

PluginModule::PluginModule(const std::string& name, PF_EntryPointFunc entryPoint)
    : mPath(name), mEntryPoint(entryPoint)
{
}

PluginModule::~PluginModule()
{
    if (mLibrary) {
        dlclose(mLibrary);
    }
}

PF_Err PluginModule::call(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                          PF_ParamDef* params[], PF_LayerDef* output, void* extra) const
{
    return mEntryPoint(cmd, in_data, out_data, params, output, extra);
}

}  // namespace Halvane::Quorvex::Host
