#pragma once

#include "Runtime/ParameterTrack.h"

#include <functional>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// The value of an option over time, as users write it: one value ("1.5",
// "badtv") for the whole render, or keyframes "SECONDS:VALUE,SECONDS:VALUE"
// ("0:0.5,4:3"). Keyframes are kept in order of time.
class KeyframeList {
public:
    using Keyframe = Host::ParameterTrack::Keyframe;
    // Turns one value's text into a number; throws ToolError (usage) naming
    // the text when it is not a value of the option.
    using ValueParser = std::function<double(const std::string& text)>;

    // Throws ToolError (usage) naming `option` and the culprit for an empty
    // text, an entry that is not SECONDS:VALUE, a time that is not a number,
    // two keyframes at one time and two whose span overflows.
    static KeyframeList parse(const std::string& option, const std::string& text,
                              const ValueParser& parseValue);
    // One value for all of time.
    static KeyframeList constant(double value);

    const std::vector<Keyframe>& keyframes() const { return mKeyframes; }
    bool isConstant() const { return mKeyframes.size() == 1; }

private:
    std::vector<Keyframe> mKeyframes;
};

}  // namespace Halvane::Quorvex::Tools
