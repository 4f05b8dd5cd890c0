#include "Media/Pictures/ColourChannels.h"

#include "Options/ToolError.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>

namespace Halvane::Quorvex::Tools {

namespace {

enum class Role { Red, Green, Blue, Alpha, Grey, Other };

struct ChannelName {
    std::string layer;  // "" for channels of no layer
    Role role;
};

Role RoleOf(const std::string& base)
{
    using OIIO::Strutil::iequals;
    if (iequals(base, "R") || iequals(base, "red")) {
        return Role::Red;
    }
    if (iequals(base, "G") || iequals(base, "green")) {
        return Role::Green;
    }
    if (iequals(base, "B") || iequals(base, "blue")) {
        return Role::Blue;
    }
    if (iequals(base, "A") || iequals(base, "alpha")) {
        return Role::Alpha;
    }
    if (iequals(base, "Y") || iequals(base, "grey") || iequals(base, "gray")) {
        return Role::Grey;
    }
    return Role::Other;
}

// "diffuse.R" is channel R of layer "diffuse", as OpenEXR and OpenImageIO
// name them.
ChannelName Split(const std::string& name)
{
    const auto dot = name.rfind('.');
    if (dot == std::string::npos) {
        return {"", RoleOf(name)};
    }
    return {name.substr(0, dot), RoleOf(name.substr(dot + 1))};
}

bool IsColour(Role role)
{
    return role == Role::Red || role == Role::Green || role == Role::Blue || role == Role::Grey;
}

}  // namespace

ColourChannels::ColourChannels(const OIIO::ImageSpec& spec, const std::string& path)
{
    std::vector<ChannelName> names;
    for (int c = 0; c < spec.nchannels; ++c) {
        names.push_back(Split(spec.channel_name(c)));
    }
    const auto colourOf = [&](const std::string& layer) {
        return std::any_of(names.begin(), names.end(), [&](const ChannelName& name) {
            return name.layer == layer && IsColour(name.role);
        });
    };
    const auto layered = std::find_if(names.begin(), names.end(), [&](const ChannelName& name) {
        return IsColour(name.role);
    });
    if (layered == names.end()) {
        throw ToolError::runtime("cannot read '" + path +
                                 "': it has no colour channels (R, G, B or Y); its channels are " +
                                 OIIO::Strutil::join(spec.channelnames, ", "));
    }
    const std::string layer = colourOf("") ? std::string() : layered->layer;

    int grey = kNone;
    for (int c = 0; c < spec.nchannels; ++c) {
        const ChannelName& name = names[static_cast<std::size_t>(c)];
        if (name.layer != layer) {
            continue;
        }
        int* const role = name.role == Role::Red     ? &mRed
                          : name.role == Role::Green ? &mGreen
                          : name.role == Role::Blue  ? &mBlue
                          : name.role == Role::Alpha ? &mAlpha
                          : name.role == Role::Grey  ? &grey
                                                     : nullptr;
        if (role && *role == kNone) {
            *role = c;
        }
    }
    if (mRed == kNone && mGreen == kNone && mBlue == kNone) {
        mRed = mGreen = mBlue = grey;
    }
    for (int c = 0; c < spec.nchannels; ++c) {
        if (c != mRed && c != mGreen && c != mBlue && c != mAlpha) {
            mUnused.push_back(spec.channel_name(c));
        }
    }
}

}  // namespace Halvane::Quorvex::Tools
