#include "Render/EffectHost.h"

#include "OpenGL/OpenGLAvailability.h"
#include "Options/EffectSettings.h"
#include "Options/NumberText.h"
#include "Render/FrameConverter.h"
#include "Render/ModuleLocation.h"

#include "Runtime/EffectSession.h"
#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

namespace Halvane::Quorvex::Tools {

namespace {

// "out of memory (error 4)"; numbers without words stay numbers.
std::string StatusInWords(int status)
{
    const std::string words = Host::DescribeEffectError(status);
    if (words.rfind("error ", 0) == 0) {
        return words;
    }
    return words + " (error " + std::to_string(status) + ")";
}

}  // namespace

EffectHost::EffectHost(const std::string& modulePath, bool verbose)
    : mModulePath(modulePath), mOutput(verbose)
{
    try {
        mRuntime = std::make_unique<Host::HostRuntime>();
        mModule = mOutput.around(
            [&] { return std::make_unique<Host::PluginModule>(LoadableModulePath(modulePath)); });
    } catch (const Host::HostError& error) {
        throw ToolError::runtime(error.what());
    }
    mSession = std::make_unique<Host::EffectSession>(*mRuntime, *mModule);
}

EffectHost::~EffectHost()
{
    if (mSetUp) {
        mOutput.around([&] { return mSession->globalSetdown(); });
    }
}

ToolError EffectHost::failure(const std::string& command, int status) const
{
    // What the module printed may say why.
    const std::string printed = Trimmed(mOutput.kept());
    if (!printed.empty()) {
        std::cerr << printed << "\n";
    }
    std::string message =
        "the effect module '" + mModulePath + "' failed " + command + ": " + StatusInWords(status);
    const std::string shown = mSession->errorMessage();
    if (!shown.empty()) {
        message += ": " + shown;
    }
    return ToolError::runtime(message);
}

std::string EffectHost::about()
{
    std::string text;
    if (const PF_Err status = mOutput.around([&] { return mSession->about(text); })) {
        throw failure("About", status);
    }
    std::replace(text.begin(), text.end(), '\r', '\n');
    return text;
}

void EffectHost::setUp()
{
    if (const PF_Err status = mOutput.around([&] { return mSession->globalSetup(); })) {
        // The module's own report of a missing OpenGL names EGL's calls; a
        // user needs to hear that there is none, and what to install.
        const std::string missingOpenGL = OpenGLAvailability::problem();
        if (!missingOpenGL.empty()) {
            throw ToolError::runtime(missingOpenGL);
        }
        throw failure("GlobalSetup", status);
    }
    mSetUp = true;
    if (const PF_Err status = mOutput.around([&] { return mSession->paramsSetup(); })) {
        throw failure("ParamsSetup", status);
    }
}

void EffectHost::apply(const EffectSettings& settings, Host::TimeSeed seed)
{
    settings.applyTo(*mRuntime);
    mSeed = seed;
    for (Host::ParameterTrack& track : mRuntime->parameters()) {
        std::vector<Host::ParameterTrack::Keyframe> keyframes = track.keyframes();
        for (Host::ParameterTrack::Keyframe& keyframe : keyframes) {
            keyframe.seconds += static_cast<double>(seed.offsetSeconds());
        }
        track.setKeyframes(std::move(keyframes));
    }
}

RgbaFrame EffectHost::render(const RgbaFrame& input, PixelDepth depth, const Host::FrameTime& time,
                             const std::string& label)
{
    const PF_PixelFormat format = PixelFormatOf(depth);
    if (!mInputWorld || mInputWorld->width() != input.width() ||
        mInputWorld->height() != input.height() || mInputWorld->format() != format) {
        try {
            mInputWorld = std::make_unique<Host::World>(input.width(), input.height(), format);
            mOutputWorld = std::make_unique<Host::World>(input.width(), input.height(), format);
        } catch (const Host::HostError& error) {
            throw ToolError::runtime(error.what());
        }
    }
    const std::optional<Host::FrameTime> seededTime = mSeed.shift(time);
    if (!seededTime) {
        throw ToolError::runtime(label + " at " + FormatNumber(time.seconds()) + " s with seed " +
                                 std::to_string(mSeed.number()) +
                                 " lies beyond the time a host can state");
    }
    FrameConverter::toWorld(input, *mInputWorld);
    mOutputWorld->clear();
    if (const PF_Err status = mOutput.around(
            [&] { return mSession->renderFrame(*mInputWorld, *mOutputWorld, *seededTime); })) {
        throw failure("to render " + label + " (" + std::to_string(input.width()) + "x" +
                          std::to_string(input.height()) + ", " + DepthName(depth) + ", at " +
                          FormatNumber(time.seconds()) + " s)",
                      status);
    }
    return FrameConverter::fromWorld(*mOutputWorld);
}

void EffectHost::setDown()
{
    if (!mSetUp) {
        return;
    }
    mSetUp = false;
    if (const PF_Err status = mOutput.around([&] { return mSession->globalSetdown(); })) {
        throw failure("GlobalSetdown", status);
    }
}

}  // namespace Halvane::Quorvex::Tools
