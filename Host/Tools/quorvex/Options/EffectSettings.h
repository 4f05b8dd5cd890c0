#pragma once

#include "Options/KeyframeList.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Host {
class HostRuntime;
}

namespace Halvane::Quorvex::Tools {

// The effect's two parameters as the user set them on the command line:
// "Glitch Type" by name (block, badtv), held from keyframe to keyframe, and
// "Speed" as a number, moving linearly between keyframes. What the user did
// not set keeps the effect's default.
class EffectSettings {
public:
    static constexpr const char* kGlitchTypeName = "Glitch Type";
    static constexpr const char* kSpeedName = "Speed";

    // Parses the texts of --glitch and --speed; an empty text leaves the
    // parameter at its default. Throws ToolError (usage) naming the option
    // and the value at fault.
    static EffectSettings parse(const std::string& glitchText, const std::string& speedText);
    static EffectSettings constant(int glitchType, std::optional<double> speed = std::nullopt);

    // The popup value (1 for "Block Glitch", 2 for "Bad TV") of a name.
    // Throws ToolError (usage) for a name it does not know.
    static int glitchTypeOf(const std::string& name);
    // The short name users type for a popup value: "block", "badtv".
    static std::string glitchTypeName(int value);

    // Checks the values against the parameters the effect declared and sets
    // them as the parameters' tracks. Throws ToolError: usage for a value
    // outside a parameter's range, naming the value and the range; runtime
    // when the effect lacks a parameter.
    void applyTo(Host::HostRuntime& host) const;

private:
    std::optional<KeyframeList> mGlitchType;
    std::optional<KeyframeList> mSpeed;
};

}  // namespace Halvane::Quorvex::Tools
