#include "Media/Pictures/PictureFormat.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <map>

namespace Halvane::Quorvex::Tools {

namespace {

using OIIO::TypeDesc;

// The sample types each writer of OpenImageIO 2.4 keeps, the narrowest
// first (its other types it changes into one of these). FITS keeps 16 bits
// signed only, so 16-bit frames go to its floats.
const std::map<std::string, std::vector<TypeDesc>>& KnownFormats()
{
    static const std::map<std::string, std::vector<TypeDesc>> formats = {
        {"bmp", {TypeDesc::UINT8}},
        {"dpx", {TypeDesc::UINT8, TypeDesc::UINT16, TypeDesc::FLOAT}},
        {"fits", {TypeDesc::UINT8, TypeDesc::FLOAT}},
        {"gif", {TypeDesc::UINT8}},
        {"hdr", {TypeDesc::FLOAT}},
        {"heif", {TypeDesc::UINT8}},
        {"ico", {TypeDesc::UINT8}},
        {"iff", {TypeDesc::UINT8, TypeDesc::UINT16}},
        {"jpeg", {TypeDesc::UINT8}},
        {"jpeg2000", {TypeDesc::UINT8, TypeDesc::UINT16}},
        {"openexr", {TypeDesc::HALF, TypeDesc::FLOAT}},
        {"png", {TypeDesc::UINT8, TypeDesc::UINT16}},
        {"pnm", {TypeDesc::UINT8}},
        {"rla", {TypeDesc::UINT8, TypeDesc::UINT16, TypeDesc::FLOAT}},
        {"sgi", {TypeDesc::UINT8, TypeDesc::UINT16}},
        {"targa", {TypeDesc::UINT8}},
        {"tiff", {TypeDesc::UINT8, TypeDesc::UINT16, TypeDesc::FLOAT}},
        {"webp", {TypeDesc::UINT8}},
    };
    return formats;
}

TypeDesc FrameType(PixelDepth depth, bool halfFloat)
{
    return depth == PixelDepth::Float && halfFloat ? TypeDesc::HALF : PictureFormat::sampleTypeOf(depth);
}

// Whether every value of `frames` survives in `file`: 16 bits hold 8, half
// floats hold 8 bits (and halves), floats hold everything.
bool Holds(TypeDesc file, TypeDesc frames)
{
    if (file == frames || file == TypeDesc::FLOAT) {
        return true;
    }
    return frames == TypeDesc::UINT8 && (file == TypeDesc::UINT16 || file == TypeDesc::HALF);
}

// Deeper first: float, half, 16, 8 bits.
int Rank(TypeDesc type)
{
    return type == TypeDesc::FLOAT ? 3 : type == TypeDesc::HALF ? 2 : type == TypeDesc::UINT16 ? 1 : 0;
}

std::string TypeName(TypeDesc type)
{
    return type == TypeDesc::FLOAT    ? "32-bit float"
           : type == TypeDesc::HALF   ? "16-bit half float"
           : type == TypeDesc::UINT16 ? "16-bit"
                                      : "8-bit";
}

}  // namespace

PictureFormat::PictureFormat(const std::string& target)
{
    const auto output = OIIO::ImageOutput::create(target);
    OIIO::geterror();  // a failed look-up leaves a message nobody needs
    if (!output) {
        return;
    }
    mName = output->format_name();
    mAlpha = output->supports("alpha");
    const auto known = KnownFormats().find(mName);
    mTypes = known != KnownFormats().end()
                 ? known->second
                 : std::vector<TypeDesc>{TypeDesc::UINT8, TypeDesc::UINT16, TypeDesc::HALF,
                                         TypeDesc::FLOAT};
}

OIIO::TypeDesc PictureFormat::sampleTypeFor(PixelDepth depth, bool halfFloat) const
{
    const TypeDesc frames = FrameType(depth, halfFloat);
    if (mTypes.empty()) {
        return frames;
    }
    if (std::find(mTypes.begin(), mTypes.end(), frames) != mTypes.end()) {
        return frames;
    }
    for (const TypeDesc& type : mTypes) {
        if (Holds(type, frames)) {
            return type;
        }
    }
    return *std::max_element(mTypes.begin(), mTypes.end(), [](TypeDesc a, TypeDesc b) {
        return Rank(a) < Rank(b);
    });
}

std::vector<std::string> PictureFormat::losses(const std::string& target, PixelDepth depth,
                                               bool halfFloat, bool alpha) const
{
    std::vector<std::string> lines;
    const TypeDesc frames = FrameType(depth, halfFloat);
    const TypeDesc file = sampleTypeFor(depth, halfFloat);
    if (!Holds(file, frames)) {
        lines.push_back("'" + target + "' holds " + TypeName(file) + " samples at most: the " +
                        TypeName(frames) + " frames are written as " + TypeName(file));
    }
    if (alpha && !mAlpha && !mName.empty()) {
        lines.push_back("'" + target + "' holds no alpha: the frames' alpha is left out");
    }
    return lines;
}

OIIO::TypeDesc PictureFormat::sampleTypeOf(PixelDepth depth)
{
    switch (depth) {
    case PixelDepth::Sixteen:
        return OIIO::TypeDesc::UINT16;
    case PixelDepth::Float:
        return OIIO::TypeDesc::FLOAT;
    default:
        return OIIO::TypeDesc::UINT8;
    }
}

}  // namespace Halvane::Quorvex::Tools
