#include "Options/PixelDepth.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

namespace Halvane::Quorvex::Tools {

PF_PixelFormat PixelFormatOf(PixelDepth depth)
{
    switch (depth) {
    case PixelDepth::Sixteen:
        return PF_PixelFormat_ARGB64;
    case PixelDepth::Float:
        return PF_PixelFormat_ARGB128;
    default:
        return PF_PixelFormat_ARGB32;
    }
}

std::size_t ChannelSize(PixelDepth depth)
{
    switch (depth) {
    case PixelDepth::Sixteen:
        return 2;
    case PixelDepth::Float:
        return 4;
    default:
        return 1;
    }
}

std::string DepthName(PixelDepth depth)
{
    switch (depth) {
    case PixelDepth::Sixteen:
        return "16-bit";
    case PixelDepth::Float:
        return "32-bit float";
    default:
        return "8-bit";
    }
}

std::optional<PixelDepth> ParseDepthOption(const std::string& text)
{
    const std::string value = Trimmed(text);
    if (value.empty() || value == "auto") {
        return std::nullopt;
    }
    if (value == "8") {
        return PixelDepth::Eight;
    }
    if (value == "16") {
        return PixelDepth::Sixteen;
    }
    if (value == "32") {
        return PixelDepth::Float;
    }
    throw ToolError::usage("--depth: '" + text + "' is not a depth (expected auto, 8, 16 or 32)");
}

}  // namespace Halvane::Quorvex::Tools
