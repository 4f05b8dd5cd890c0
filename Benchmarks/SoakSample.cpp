#include "SoakSample.h"

#include "ModuleProfiler.h"

#include "Runtime/HostRuntime.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace Halvane::Quorvex::Benchmarks {

namespace {

// The figures by name, in the order they are printed and compared.
struct Figure {
    const char* mName;
    long SoakSample::*mField;
};

const Figure kHostFigures[] = {
    {"handles", &SoakSample::mOpenHandles},
    {"locked", &SoakSample::mLockedHandles},
    {"suites", &SoakSample::mOutstandingSuites},
    {"params", &SoakSample::mParamCheckouts},
    {"layers", &SoakSample::mLayerCheckouts},
};

struct ObjectFigure {
    const char* mName;
    long QuorvexLiveObjects::*mField;
};

const ObjectFigure kObjectFigures[] = {
    {"textures", &QuorvexLiveObjects::mTextures},
    {"renderbuf", &QuorvexLiveObjects::mRenderbuffers},
    {"buffers", &QuorvexLiveObjects::mBuffers},
    {"programs", &QuorvexLiveObjects::mPrograms},
    {"shaders", &QuorvexLiveObjects::mShaders},
    {"framebuf", &QuorvexLiveObjects::mFramebuffers},
    {"vertexarr", &QuorvexLiveObjects::mVertexArrays},
    {"contexts", &QuorvexLiveObjects::mContexts},
};

// Resident memory in use: what the allocator holds free for reuse is handed
// back first, so that a block freed at one size and kept for the next does
// not read as growth.
long ResidentBytes()
{
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    long totalPages = 0;
    long residentPages = 0;
    if (!(statm >> totalPages >> residentPages)) {
        throw std::runtime_error("cannot read /proc/self/statm");
    }
    return residentPages * sysconf(_SC_PAGESIZE);
}

double Mebibytes(long bytes)
{
    return static_cast<double>(bytes) / (1024.0 * 1024.0);
}

}  // namespace

SoakSample SoakSample::take(std::size_t frames, const std::string& size, Host::HostRuntime& host,
                            const ModuleProfiler& profiler)
{
    SoakSample sample;
    sample.mFrames = frames;
    sample.mSize = size;
    sample.mObjects = profiler.liveObjects();
    sample.mOpenHandles = static_cast<long>(host.handles().openHandles());
    sample.mLockedHandles = static_cast<long>(host.handles().lockedHandles());
    sample.mOutstandingSuites = static_cast<long>(host.suites().outstanding());
    sample.mParamCheckouts = host.openParamCheckouts();
    sample.mLayerCheckouts = static_cast<long>(host.openLayerCheckouts());
    sample.mResidentBytes = ResidentBytes();
    return sample;
}

void SoakSample::printHeading(std::ostream& out)
{
    char text[64];
    std::snprintf(text, sizeof text, "%6s %-10s %9s", "frames", "size", "RSS MiB");
    out << text;
    for (const Figure& figure : kHostFigures) {
        std::snprintf(text, sizeof text, " %8s", figure.mName);
        out << text;
    }
    for (const ObjectFigure& figure : kObjectFigures) {
        std::snprintf(text, sizeof text, " %9s", figure.mName);
        out << text;
    }
    out << "\n";
}

void SoakSample::print(std::ostream& out) const
{
    char text[64];
    std::snprintf(text, sizeof text, "%6zu %-10s %9.1f", mFrames, mSize.c_str(), Mebibytes(mResidentBytes));
    out << text;
    for (const Figure& figure : kHostFigures) {
        std::snprintf(text, sizeof text, " %8ld", this->*figure.mField);
        out << text;
    }
    for (const ObjectFigure& figure : kObjectFigures) {
        std::snprintf(text, sizeof text, " %9ld", mObjects.*figure.mField);
        out << text;
    }
    out << "\n";
}

std::vector<std::string> SoakSample::growthTo(const SoakSample& later, long residentToleranceBytes) const
{
    std::vector<std::string> grown;
    const auto compare = [&grown](const char* name, long before, long after) {
        if (after > before) {
            grown.push_back(std::string(name) + ": " + std::to_string(before) + " -> " + std::to_string(after));
        }
    };
    for (const Figure& figure : kHostFigures) {
        compare(figure.mName, this->*figure.mField, later.*figure.mField);
    }
    for (const ObjectFigure& figure : kObjectFigures) {
        compare(figure.mName, mObjects.*figure.mField, later.mObjects.*figure.mField);
    }
    if (later.mResidentBytes > mResidentBytes + residentToleranceBytes) {
        char text[160];
        std::snprintf(text, sizeof text, "resident memory: %.1f MiB -> %.1f MiB (more than %.1f MiB of allowance)",
                      Mebibytes(mResidentBytes), Mebibytes(later.mResidentBytes),
                      Mebibytes(residentToleranceBytes));
        grown.push_back(text);
    }
    return grown;
}

}  // namespace Halvane::Quorvex::Benchmarks
