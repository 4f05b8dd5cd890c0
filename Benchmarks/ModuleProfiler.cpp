#include "ModuleProfiler.h"

#include <dlfcn.h>

#include <stdexcept>

namespace Halvane::Quorvex::Benchmarks {

namespace {

template <typename Function>
Function Find(void* library, const char* name)
{
    return library ? reinterpret_cast<Function>(dlsym(library, name)) : nullptr;
}

}  // namespace

ModuleProfiler::ModuleProfiler(const std::string& modulePath)
    : mModulePath(modulePath), mLibrary(dlopen(modulePath.c_str(), RTLD_NOW | RTLD_NOLOAD))
{
    mSetSynchronised = Find<QuorvexSetSynchronisedFunc>(mLibrary, kQuorvexSetSynchronisedName);
    mLastFrame = Find<QuorvexLastFrameFunc>(mLibrary, kQuorvexLastFrameName);
    mCountLiveObjects = Find<QuorvexCountLiveObjectsFunc>(mLibrary, kQuorvexCountLiveObjectsName);
}

ModuleProfiler::~ModuleProfiler()
{
    if (mLibrary) {
        dlclose(mLibrary);
    }
}

void ModuleProfiler::setSynchronised(bool synchronised) const
{
    if (mSetSynchronised) {
        mSetSynchronised(synchronised ? 1 : 0);
    }
}

std::optional<QuorvexFrameProfile> ModuleProfiler::lastFrame() const
{
    QuorvexFrameProfile profile{};
    if (!mLastFrame || mLastFrame(&profile) != 0) {
        return std::nullopt;
    }
    return profile;
}

QuorvexLiveObjects ModuleProfiler::liveObjects() const
{
    if (!mCountLiveObjects) {
        throw std::runtime_error("'" + mModulePath + "' cannot count its GL objects (" +
                                 kQuorvexCountLiveObjectsName +
                                 " is missing); load the profiled module QuorvexProfiled.so");
    }
    QuorvexLiveObjects objects{};
    if (const int err = mCountLiveObjects(&objects)) {
        throw std::runtime_error("'" + mModulePath + "' failed to count its GL objects (error " +
                                 std::to_string(err) + ")");
    }
    return objects;
}

}  // namespace Halvane::Quorvex::Benchmarks
