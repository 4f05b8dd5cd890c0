#pragma once

#include "QuorvexProfiling.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Host {
class HostRuntime;
}

namespace Halvane::Quorvex::Benchmarks {

class ModuleProfiler;

// What the soak compares between two moments of a long render: the memory
// the process holds, what the host runtime has handed to the effect and not
// got back, and the effect's live GL objects.
class SoakSample {
public:
    // Between frames, on the thread that renders (its render context is the
    // one whose framebuffers and vertex arrays are counted). Throws
    // std::runtime_error when the module cannot count its GL objects.
    static SoakSample take(std::size_t frames, const std::string& size, Host::HostRuntime& host,
                           const ModuleProfiler& profiler);

    static void printHeading(std::ostream& out);
    void print(std::ostream& out) const;

    // What is larger in `later` than here, one line each; resident memory
    // counts only beyond `residentToleranceBytes`. Empty when nothing grew.
    std::vector<std::string> growthTo(const SoakSample& later, long residentToleranceBytes) const;

    std::size_t mFrames = 0;
    std::string mSize;
    long mResidentBytes = 0;
    long mOpenHandles = 0;
    long mLockedHandles = 0;
    long mOutstandingSuites = 0;
    long mParamCheckouts = 0;
    long mLayerCheckouts = 0;
    QuorvexLiveObjects mObjects{};
};

}  // namespace Halvane::Quorvex::Benchmarks
