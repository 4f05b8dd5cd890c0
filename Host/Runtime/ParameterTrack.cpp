#include "Runtime/ParameterTrack.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace Halvane::Quorvex::Host {

namespace {

double DefinedValue(const PF_ParamDef& definition)
{
    switch (definition.param_type) {
    case PF_Param_POPUP:
        return definition.u.pd.value;
    case PF_Param_FLOAT_SLIDER:
        return definition.u.fs_d.value;
    default:
        return 0.0;
    }
}

}  // namespace

// Records are copied byte for byte, padding included, so that a test can
// see every byte the effect wrote.
ParameterTrack::ParameterTrack(const PF_ParamDef& definition)
{
    std::memcpy(&mDefinition, &definition, sizeof(mDefinition));
    mDefinition.name[sizeof(mDefinition.name) - 1] = '\0';
    // The effect's text need not outlive the call that added the parameter.
    if (mDefinition.param_type == PF_Param_POPUP && mDefinition.u.pd.u.namesptr) {
        mPopupNames = mDefinition.u.pd.u.namesptr;
    }
    pointAtOwnNames();
    mKeyframes.push_back({0.0, DefinedValue(mDefinition)});
}

ParameterTrack::ParameterTrack(const ParameterTrack& other)
    : mPopupNames(other.mPopupNames), mKeyframes(other.mKeyframes)
{
    std::memcpy(&mDefinition, &other.mDefinition, sizeof(mDefinition));
    pointAtOwnNames();
}

ParameterTrack& ParameterTrack::operator=(const ParameterTrack& other)
{
    std::memcpy(&mDefinition, &other.mDefinition, sizeof(mDefinition));
    mPopupNames = other.mPopupNames;
    mKeyframes = other.mKeyframes;
    pointAtOwnNames();
    return *this;
}

void ParameterTrack::pointAtOwnNames()
{
    if (mDefinition.param_type == PF_Param_POPUP) {
        mDefinition.u.pd.u.namesptr = mPopupNames.c_str();
    }
}

std::vector<std::string> ParameterTrack::choices() const
{
    std::vector<std::string> result;
    if (mDefinition.param_type != PF_Param_POPUP) {
        return result;
    }
    std::istringstream names(mPopupNames);
    std::string entry;
    while (std::getline(names, entry, '|')) {
        result.push_back(entry);
    }
    return result;
}

void ParameterTrack::setValue(double value)
{
    mKeyframes.assign(1, Keyframe{0.0, value});
}

void ParameterTrack::setKeyframes(std::vector<Keyframe> keyframes)
{
    if (keyframes.empty()) {
        setValue(DefinedValue(mDefinition));
        return;
    }
    std::stable_sort(keyframes.begin(), keyframes.end(),
                     [](const Keyframe& a, const Keyframe& b) { return a.seconds < b.seconds; });
    mKeyframes = std::move(keyframes);
}

double ParameterTrack::valueAt(double seconds) const
{
    if (seconds <= mKeyframes.front().seconds) {
        return mKeyframes.front().value;
    }
    auto next = std::upper_bound(mKeyframes.begin(), mKeyframes.end(), seconds,
                                 [](double s, const Keyframe& k) { return s < k.seconds; });
    if (next == mKeyframes.end()) {
        return mKeyframes.back().value;
    }
    const Keyframe& before = *(next - 1);
    if (mDefinition.param_type != PF_Param_FLOAT_SLIDER) {
        return before.value;
    }
    const double share = (seconds - before.seconds) / (next->seconds - before.seconds);
    return before.value + (next->value - before.value) * share;
}

PF_ParamDef ParameterTrack::recordAt(double seconds) const
{
    PF_ParamDef record = mDefinition;
    const double value = valueAt(seconds);
    switch (record.param_type) {
    case PF_Param_POPUP:
        record.u.pd.value = static_cast<PF_ParamValue>(std::lround(value));
        break;
    case PF_Param_FLOAT_SLIDER:
        record.u.fs_d.value = value;
        break;
    default:
        break;
    }
    return record;
}

}  // namespace Halvane::Quorvex::Host
