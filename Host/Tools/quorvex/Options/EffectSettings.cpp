#include "Options/EffectSettings.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"

#include <cctype>

namespace Halvane::Quorvex::Tools {

namespace {

struct GlitchTypeEntry {
    const char* name;
    int value;
};

// Users may type the short name or the popup's own words in any case and
// spacing ("Bad TV", "bad-tv", "BlockGlitch").
constexpr GlitchTypeEntry kGlitchTypes[] = {
    {"block", 1},
    {"blockglitch", 1},
    {"badtv", 2},
};

std::string Normalised(const std::string& name)
{
    std::string result;
    for (const char c : name) {
        if (c != ' ' && c != '-' && c != '_') {
            result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return result;
}

Host::ParameterTrack& FindParameter(Host::HostRuntime& host, const std::string& name)
{
    try {
        return host.parameter(name);
    } catch (const Host::HostError& error) {
        throw ToolError::runtime(error.what());
    }
}

}  // namespace

int EffectSettings::glitchTypeOf(const std::string& name)
{
    const std::string key = Normalised(name);
    for (const GlitchTypeEntry& entry : kGlitchTypes) {
        if (key == entry.name) {
            return entry.value;
        }
    }
    throw ToolError::usage("--glitch: unknown glitch type '" + name +
                           "' (expected block or badtv)");
}

std::string EffectSettings::glitchTypeName(int value)
{
    return value == 1 ? "block" : value == 2 ? "badtv" : std::to_string(value);
}

EffectSettings EffectSettings::parse(const std::string& glitchText, const std::string& speedText)
{
    EffectSettings settings;
    if (!glitchText.empty()) {
        settings.mGlitchType = KeyframeList::parse(
            "--glitch", glitchText, [](const std::string& text) { return glitchTypeOf(text); });
    }
    if (!speedText.empty()) {
        settings.mSpeed = KeyframeList::parse("--speed", speedText, [](const std::string& text) {
            double value = 0.0;
            if (!ParseDouble(text, value)) {
                throw ToolError::usage("--speed: '" + text + "' is not a number");
            }
            return value;
        });
    }
    return settings;
}

EffectSettings EffectSettings::constant(int glitchType, std::optional<double> speed)
{
    EffectSettings settings;
    settings.mGlitchType = KeyframeList::constant(glitchType);
    if (speed) {
        settings.mSpeed = KeyframeList::constant(*speed);
    }
    return settings;
}

void EffectSettings::applyTo(Host::HostRuntime& host) const
{
    if (mGlitchType) {
        Host::ParameterTrack& parameter = FindParameter(host, kGlitchTypeName);
        const auto choices = static_cast<double>(parameter.definition().u.pd.num_choices);
        for (const auto& keyframe : mGlitchType->keyframes()) {
            if (keyframe.value > choices) {
                throw ToolError::usage("--glitch: the effect offers only " + FormatNumber(choices) +
                                       " glitch types");
            }
        }
        parameter.setKeyframes(mGlitchType->keyframes());
    }
    if (mSpeed) {
        Host::ParameterTrack& parameter = FindParameter(host, kSpeedName);
        const double low = parameter.definition().u.fs_d.valid_min;
        const double high = parameter.definition().u.fs_d.valid_max;
        for (const auto& keyframe : mSpeed->keyframes()) {
            if (keyframe.value < low || keyframe.value > high) {
                throw ToolError::usage("--speed: " + FormatNumber(keyframe.value) +
                                       " is outside the valid range of " + kSpeedName + ", " +
                                       FormatNumber(low) + " to " + FormatNumber(high));
            }
        }
        parameter.setKeyframes(mSpeed->keyframes());
    }
}

}  // namespace Halvane::Quorvex::Tools
