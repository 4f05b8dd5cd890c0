#pragma once

#include "RetrySchedule.h"
#include "StandardErrorCapture.h"

#include "Runtime/FrameTime.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace Halvane::Quorvex::Host {
class EffectSession;
class HostRuntime;
class ParameterTrack;
class PluginModule;
class World;
}  // namespace Halvane::Quorvex::Host

namespace Halvane::Quorvex::Frei0r {

// The effect linked into the plug-in, driven through EntryPointFunc by the
// substitute host of Host/Runtime exactly as `quorvex` drives Quorvex.so.
// One per process, shared by every instance: the host runtime is a process
// singleton and the effect renders one frame at a time, so frames from any
// number of instances and threads take turns behind one lock. The effect is
// set up at the first frame after f0r_init (hosts call f0r_init just to list
// plug-ins) and set down when the last f0r_init is matched by f0r_deinit.
//
// A frame that cannot be rendered is copied from input to output, and why
// is said once on standard error; the host never sees a failure. Frames of
// a size that failed are tried again after a pause that grows while they
// keep failing (RetrySchedule): what failed may pass.
class SharedEffect {
public:
    struct Frame {
        unsigned width = 0;
        unsigned height = 0;
        const std::uint32_t* input = nullptr;  // RGBA8888, straight alpha
        std::uint32_t* output = nullptr;
    };
    struct Settings {
        int glitchType = 1;  // the effect's popup value: 1 Block Glitch, 2 Bad TV
        double speed = 1.0;  // the effect's Speed, 0 to 3
    };

    static SharedEffect& process();

    void retain();
    void release();

    void render(const Frame& frame, const Settings& settings, const Host::FrameTime& time);

    // Prints `line` on standard error unless a line of the same `cause`
    // was printed before.
    void reportOnce(const std::string& cause, const std::string& line);

private:
    SharedEffect() = default;

    // Each returns an empty text, or why the frame cannot be rendered.
    std::string setUp();
    std::string renderLocked(const Frame& frame, const Settings& settings,
                             const Host::FrameTime& time);
    // renderLocked with what the effect prints caught: shown when the frame
    // rendered, folded into the reason when it did not.
    std::string renderCaptured(const Frame& frame, const Settings& settings,
                               const Host::FrameTime& time);
    // Ends the effect; a set-up that failed is made again at the next try.
    void setDown();
    void reportOnceLocked(const std::string& cause, const std::string& line);

    std::mutex mMutex;
    int mUsers = 0;
    // Sizes whose last frame could not be rendered, and when to try again.
    std::map<std::pair<unsigned, unsigned>, RetrySchedule> mRetries;
    std::set<std::string> mReported;
    StandardErrorCapture mErrorCapture;

    std::unique_ptr<Host::HostRuntime> mRuntime;
    std::unique_ptr<Host::PluginModule> mModule;
    std::unique_ptr<Host::EffectSession> mSession;
    std::unique_ptr<Host::World> mInputWorld;
    std::unique_ptr<Host::World> mOutputWorld;
    // The effect's two parameters, found by name once it declared them.
    Host::ParameterTrack* mGlitchType = nullptr;
    Host::ParameterTrack* mSpeed = nullptr;
};

}  // namespace Halvane::Quorvex::Frei0r
