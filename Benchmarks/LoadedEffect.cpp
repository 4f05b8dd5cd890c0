#include "LoadedEffect.h"

#include "Media/Pictures/StandardOutputCapture.h"
#include "Options/EffectSettings.h"
#include "Options/PixelDepth.h"

#include "Runtime/World.h"

#include <stdexcept>

namespace Halvane::Quorvex::Benchmarks {

namespace {

constexpr int kFirstFrameSide = 16;

}  // namespace

LoadedEffect::LoadedEffect(const std::string& modulePath)
    : mModule(modulePath), mSession(mHost, mModule), mProfiler(modulePath)
{
    Tools::StandardOutputCapture capture;
    check("GlobalSetup", mSession.globalSetup());
    check("ParamsSetup", mSession.paramsSetup());
    Host::World input(kFirstFrameSide, kFirstFrameSide, PF_PixelFormat_ARGB32);
    Host::World output(kFirstFrameSide, kFirstFrameSide, PF_PixelFormat_ARGB32);
    render(input, output, Host::FrameTime{});
    mOpenGL = Tools::OpenGLReport::parse(capture.finish());
}

LoadedEffect::~LoadedEffect()
{
    mSession.globalSetdown();
}

void LoadedEffect::setGlitchType(int popupValue)
{
    Tools::EffectSettings::constant(popupValue).applyTo(mHost);
}

void LoadedEffect::render(Host::World& input, Host::World& output, const Host::FrameTime& time)
{
    check("to render a frame", mSession.renderFrame(input, output, time));
}

void LoadedEffect::check(const std::string& command, PF_Err status) const
{
    if (status != PF_Err_NONE) {
        throw std::runtime_error("the effect module '" + mModule.path() + "' failed " + command +
                                 ": " + Host::DescribeEffectError(status));
    }
}

}  // namespace Halvane::Quorvex::Benchmarks
