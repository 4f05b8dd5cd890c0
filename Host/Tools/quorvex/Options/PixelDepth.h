#pragma once

#include "EffectInterface.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Halvane::Quorvex::Tools {

// The three depths a host world comes in. Files keep their own ranges:
// 8 bits 0..255, 16 bits 0..65535, float with 1.0 as white.
enum class PixelDepth { Eight, Sixteen, Float };

PF_PixelFormat PixelFormatOf(PixelDepth depth);
// Bytes of one channel of one pixel.
std::size_t ChannelSize(PixelDepth depth);
// "8-bit", "16-bit", "32-bit float".
std::string DepthName(PixelDepth depth);

// The value of --depth: "auto" gives no depth (follow the input), "8",
// "16" and "32" give theirs. Throws ToolError (usage) for anything else.
std::optional<PixelDepth> ParseDepthOption(const std::string& text);

}  // namespace Halvane::Quorvex::Tools
