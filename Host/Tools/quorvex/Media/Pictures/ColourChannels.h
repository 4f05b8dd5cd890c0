#pragma once

#include <OpenImageIO/imageio.h>

#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// Which channels of a picture file give red, green, blue and alpha, found by
// their names as OpenImageIO reports them: R, G, B and A (any case), or a
// single Y as grey. Names of layers ("diffuse.R") count too: the channels
// without a layer name are taken where they hold colour, else the first
// layer that does. Other channels (Z, a second layer) are not used.
class ColourChannels {
public:
    static constexpr int kNone = -1;

    // Throws ToolError (runtime) naming `path` and listing the channels it
    // has when none of them is colour.
    ColourChannels(const OIIO::ImageSpec& spec, const std::string& path);

    // The file's channel index of each; kNone where the file lacks it. A
    // grey file gives its grey channel for all three colours.
    int red() const { return mRed; }
    int green() const { return mGreen; }
    int blue() const { return mBlue; }
    int alpha() const { return mAlpha; }

    // The names of the channels that are not used, in the file's order.
    const std::vector<std::string>& unused() const { return mUnused; }

private:
    int mRed = kNone;
    int mGreen = kNone;
    int mBlue = kNone;
    int mAlpha = kNone;
    std::vector<std::string> mUnused;
};

}  // namespace Halvane::Quorvex::Tools
