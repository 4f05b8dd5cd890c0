#pragma once

// What the benchmarks' build of the effect module (QuorvexProfiled.so)
// exports beside EntryPointFunc; the module that users load has none of it.
// A benchmark finds these functions with dlsym by the names below.

extern "C" {

// Stages in the order a frame runs them, each ended by one of the GL
// runtime's frame events (GL/FrameHooks.h).
enum QuorvexProfileStage {
    kQuorvexStagePrepare,
    kQuorvexStageUpload,
    kQuorvexStageEffectDraw,
    kQuorvexStageResolve,
    kQuorvexStageScreenPass,
    kQuorvexStageReadBack,
    kQuorvexStageCount
};

struct QuorvexFrameProfile {
    double mStageSeconds[kQuorvexStageCount];
    // The whole SmartRender.
    double mFrameSeconds;
};

// The plug-in's live GL objects: what the census counts and the soak check
// compares.
struct QuorvexLiveObjects {
    // Shared by the plug-in's share group.
    long mTextures;
    long mRenderbuffers;
    long mBuffers;
    long mPrograms;
    long mShaders;
    // Of the calling thread's render context only.
    long mFramebuffers;
    long mVertexArrays;
    // Every context the plug-in holds, the shared data context included.
    long mContexts;
};

// Whether the stage markers wait for GL before reading the clock (on at load).
// Off, the frame is timed as a whole exactly as the production module runs it.
typedef void (*QuorvexSetSynchronisedFunc)(int synchronised);
// The last SmartRender that ran to its end. Returns 0, or 1 when none has.
typedef int (*QuorvexLastFrameFunc)(QuorvexFrameProfile* profile);
// Counts the plug-in's live GL objects in the calling thread's render
// context (made current for the count, the caller's context given back).
// Returns a host error number, 0 on success.
typedef int (*QuorvexCountLiveObjectsFunc)(QuorvexLiveObjects* objects);

}

constexpr const char* kQuorvexSetSynchronisedName = "QuorvexProfilerSetSynchronised";
constexpr const char* kQuorvexLastFrameName = "QuorvexProfilerLastFrame";
constexpr const char* kQuorvexCountLiveObjectsName = "QuorvexProfilerCountLiveObjects";
