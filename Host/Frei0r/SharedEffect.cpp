#include "SharedEffect.h"

#include "Runtime/EffectSession.h"
#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"

#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <sstream>

namespace Halvane::Quorvex::Frei0r {

namespace {

constexpr const char* kModuleName = "quorvex.so (frei0r)";
constexpr const char* kGlitchTypeName = "Glitch Type";
constexpr const char* kSpeedName = "Speed";

// The effect reports the OpenGL of each context it makes on standard output.
// A host may be writing video there, and on standard error it would repeat
// in every run of every host: it is dropped (`quorvex info` shows it).
class EffectReportDropped {
public:
    EffectReportDropped() : mSaved(std::cout.rdbuf(&mDropped)) {}
    ~EffectReportDropped() { std::cout.rdbuf(mSaved); }

    EffectReportDropped(const EffectReportDropped&) = delete;
    EffectReportDropped& operator=(const EffectReportDropped&) = delete;

private:
    std::stringbuf mDropped;
    std::streambuf* mSaved;
};

std::string Failure(const std::string& what, PF_Err status, const Host::EffectSession& session)
{
    std::string text = what + ": " + Host::DescribeEffectError(status);
    const std::string shown = session.errorMessage();
    if (!shown.empty()) {
        text += ": " + shown;
    }
    return text;
}

// Lines joined with "; ", without the effect's "Quorvex: " prefixes.
std::string OneLine(const std::string& text)
{
    std::string joined;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string line = text.substr(start, end - start);
        if (line.rfind("Quorvex: ", 0) == 0) {
            line.erase(0, 9);
        }
        if (!line.empty()) {
            joined += (joined.empty() ? "" : "; ") + line;
        }
        start = end + 1;
    }
    return joined;
}

}  // namespace

SharedEffect& SharedEffect::process()
{
    // Never destroyed: a host may exit without f0r_deinit, and the GL
    // driver's own clean-up at exit must not meet a half-torn effect.
    static SharedEffect* const effect = new SharedEffect();
    return *effect;
}

void SharedEffect::retain()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mUsers;
}

void SharedEffect::release()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mUsers > 0 && --mUsers == 0) {
        setDown();
        // A fresh f0r_init tries every size at once.
        mRetries.clear();
    }
}

void SharedEffect::render(const Frame& frame, const Settings& settings, const Host::FrameTime& time)
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const std::pair<unsigned, unsigned> size{frame.width, frame.height};
        const auto retry = mRetries.find(size);
        if (retry == mRetries.end() || retry->second.due()) {
            const std::string failure = renderCaptured(frame, settings, time);
            if (failure.empty()) {
                if (retry != mRetries.end()) {
                    mRetries.erase(retry);
                }
                return;
            }
            mRetries[size].failed();
            const std::string sizeText = std::to_string(frame.width) + "x" + std::to_string(frame.height);
            reportOnceLocked(sizeText + ": " + failure,
                             "quorvex frei0r: passing " + sizeText + " frames through unchanged: " + failure);
        }
    }
    std::memcpy(frame.output, frame.input,
                static_cast<std::size_t>(frame.width) * frame.height * sizeof(std::uint32_t));
}

std::string SharedEffect::renderCaptured(const Frame& frame, const Settings& settings,
                                         const Host::FrameTime& time)
{
    const EffectReportDropped dropped;
    mErrorCapture.begin();
    std::string failure;
    try {
        failure = renderLocked(frame, settings, time);
    } catch (const std::bad_alloc&) {
        failure = "out of memory";
    } catch (const std::exception& error) {
        failure = error.what();
    }
    const std::string printed = mErrorCapture.end();
    if (failure.empty()) {
        std::fputs(printed.c_str(), stderr);
        return failure;
    }
    // What the effect said is the better reason; its status alone says
    // little ("bad callback parameter").
    return printed.empty() ? failure : OneLine(printed);
}

std::string SharedEffect::setUp()
{
    if (mSession) {
        return std::string();
    }
    try {
        mRuntime = std::make_unique<Host::HostRuntime>();
        mModule = std::make_unique<Host::PluginModule>(kModuleName, &EntryPointFunc);
    } catch (const Host::HostError& error) {
        setDown();
        return error.what();
    }
    auto session = std::make_unique<Host::EffectSession>(*mRuntime, *mModule);
    PF_Err status = session->globalSetup();
    if (status != PF_Err_NONE) {
        const std::string failure = Failure("the effect's GlobalSetup failed", status, *session);
        setDown();
        return failure;
    }
    if ((status = session->paramsSetup()) != PF_Err_NONE) {
        const std::string failure = Failure("the effect's ParamsSetup failed", status, *session);
        session->globalSetdown();
        setDown();
        return failure;
    }
    try {
        mGlitchType = &mRuntime->parameter(kGlitchTypeName);
        mSpeed = &mRuntime->parameter(kSpeedName);
    } catch (const Host::HostError& error) {
        session->globalSetdown();
        setDown();
        return error.what();
    }
    mSession = std::move(session);
    return std::string();
}

void SharedEffect::setDown()
{
    if (mSession) {
        mSession->globalSetdown();
    }
    mSession.reset();
    mGlitchType = nullptr;
    mSpeed = nullptr;
    mModule.reset();
    mRuntime.reset();
    mInputWorld.reset();
    mOutputWorld.reset();
}

std::string SharedEffect::renderLocked(const Frame& frame, const Settings& settings,
                                       const Host::FrameTime& time)
{
    if (std::string failure = setUp(); !failure.empty()) {
        return failure;
    }
    const auto width = static_cast<A_long>(frame.width);
    const auto height = static_cast<A_long>(frame.height);
    if (!mInputWorld || mInputWorld->width() != width || mInputWorld->height() != height) {
        mInputWorld.reset();
        mOutputWorld.reset();
        mInputWorld = std::make_unique<Host::World>(width, height, PF_PixelFormat_ARGB32);
        mOutputWorld = std::make_unique<Host::World>(width, height, PF_PixelFormat_ARGB32);
    }
    const auto* source = reinterpret_cast<const std::uint8_t*>(frame.input);
    for (A_long y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<PF_Pixel8*>(mInputWorld->row(y));
        for (A_long x = 0; x < width; ++x, source += 4) {
            row[x] = PF_Pixel8{source[3], source[0], source[1], source[2]};
        }
    }
    // Nothing of another instance's frame can show through.
    mOutputWorld->clear();
    mGlitchType->setValue(settings.glitchType);
    mSpeed->setValue(settings.speed);

    if (const PF_Err status = mSession->renderFrame(*mInputWorld, *mOutputWorld, time)) {
        return Failure("the effect could not render a " + std::to_string(frame.width) + "x" +
                               std::to_string(frame.height) + " frame", status, *mSession);
    }
    auto* target = reinterpret_cast<std::uint8_t*>(frame.output);
    for (A_long y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const PF_Pixel8*>(mOutputWorld->row(y));
        for (A_long x = 0; x < width; ++x, target += 4) {
            target[0] = row[x].red;
            target[1] = row[x].green;
            target[2] = row[x].blue;
            target[3] = row[x].alpha;
        }
    }
    return std::string();
}

void SharedEffect::reportOnce(const std::string& cause, const std::string& line)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    reportOnceLocked(cause, line);
}

void SharedEffect::reportOnceLocked(const std::string& cause, const std::string& line)
{
    if (mReported.insert(cause).second) {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
}

}  // namespace Halvane::Quorvex::Frei0r
