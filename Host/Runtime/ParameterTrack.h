#pragma once

#include "EffectInterface.h"

#include <string>
#include <vector>

namespace Halvane::Quorvex::Host {

// One parameter of the effect as the host keeps it: the definition that the
// effect added, and its value over the layer's time. A float slider moves
// linearly between keyframes; every other kind holds a keyframe's value until
// the next one. Before the first and after the last keyframe the value stays.
class ParameterTrack {
public:
    struct Keyframe {
        double seconds;
        double value;
    };

    explicit ParameterTrack(const PF_ParamDef& definition);

    ParameterTrack(const ParameterTrack& other);
    ParameterTrack& operator=(const ParameterTrack& other);

    const PF_ParamDef& definition() const { return mDefinition; }
    std::string name() const { return mDefinition.name; }
    PF_ParamType type() const { return mDefinition.param_type; }
    // The popup's entries, split at '|'; empty for other kinds.
    std::vector<std::string> choices() const;

    // A value that does not change over time.
    void setValue(double value);
    // Replaces the keyframes; they need not be given in order of time.
    void setKeyframes(std::vector<Keyframe> keyframes);
    const std::vector<Keyframe>& keyframes() const { return mKeyframes; }

    double valueAt(double seconds) const;
    // The definition with its value field set to the value at `seconds`.
    PF_ParamDef recordAt(double seconds) const;

private:
    void pointAtOwnNames();

    PF_ParamDef mDefinition;
    std::string mPopupNames;
    std::vector<Keyframe> mKeyframes;
};

}  // namespace Halvane::Quorvex::Host
