#include "HostWorldCheck.h"

#include "EffectSuites.h"
#include "Helper/SuiteScoper.h"

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <optional>

namespace Halvane::Quorvex {

namespace {

struct Depth {
    std::size_t pixelSize;
    std::size_t channelSize;
};

bool DepthOf(PF_PixelFormat format, Depth& depth)
{
    switch (format) {
    case PF_PixelFormat_ARGB32:
        depth = Depth{4, 1};
        return true;
    case PF_PixelFormat_ARGB64:
        depth = Depth{8, 2};
        return true;
    case PF_PixelFormat_ARGB128:
        depth = Depth{16, 4};
        return true;
    default:
        return false;
    }
}

std::string FormatName(PF_PixelFormat format)
{
    switch (format) {
    case PF_PixelFormat_ARGB32:
        return "\"argb\"";
    case PF_PixelFormat_ARGB64:
        return "\"ae16\"";
    case PF_PixelFormat_ARGB128:
        return "\"ae32\"";
    default: {
        char text[16];
        std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(format));
        return text;
    }
    }
}

// The world's format, or nothing when the host cannot say.
std::optional<PF_PixelFormat> FormatOf(const PF_WorldSuite2& suite, const PF_EffectWorld* world)
{
    PF_PixelFormat format = PF_PixelFormat_ARGB32;
    if (world == nullptr || suite.PF_GetPixelFormat(world, &format) != PF_Err_NONE) {
        return std::nullopt;
    }
    return format;
}

[[noreturn]] void Refuse(const char* which, const std::string& why)
{
    std::cerr << "Quorvex: the host's " << which << " world cannot be used: " << why << std::endl;
    throw static_cast<int>(PF_Err_BAD_CALLBACK_PARAM);
}

}  // namespace

std::string HostWorldCheck::problem(const PF_EffectWorld* world, PF_PixelFormat format)
{
    if (world == nullptr) {
        return "there is none";
    }
    const std::string size = std::to_string(world->width) + "x" + std::to_string(world->height);
    Depth depth{};
    if (!DepthOf(format, depth)) {
        return "pixel format " + FormatName(format) + " is not one of \"argb\", \"ae16\", \"ae32\"";
    }
    if (world->width < 0 || world->height < 0) {
        return "its size " + size + " is negative";
    }
    const std::size_t rowLength = static_cast<std::size_t>(world->width) * depth.pixelSize;
    if (world->rowbytes < 0 || (world->height > 0 && static_cast<std::size_t>(world->rowbytes) < rowLength)) {
        return "its rows are " + std::to_string(world->rowbytes) + " bytes apart, fewer than the " +
               std::to_string(rowLength) + " bytes of " + std::to_string(world->width) + " pixels of " +
               FormatName(format);
    }
    if (world->width == 0 || world->height == 0) {
        return {};
    }
    if (world->data == nullptr) {
        return "it has no pixel memory for its " + size + " pixels";
    }
    // GL reads channels of 16 and 32 bits only where they are aligned.
    const auto address = reinterpret_cast<std::uintptr_t>(world->data);
    if (address % depth.channelSize != 0 ||
        static_cast<std::size_t>(world->rowbytes) % depth.channelSize != 0) {
        return "its pixels or rows are not aligned to the " + std::to_string(depth.channelSize) +
               "-byte channels of " + FormatName(format);
    }
    return {};
}

PF_PixelFormat HostWorldCheck::requireUsable(PF_InData* in_data, const PF_EffectWorld* input,
                                   const PF_EffectWorld* output)
{
    SuiteScoper<PF_WorldSuite2> worldSuite(in_data, kPFWorldSuite, 2);
    const std::optional<PF_PixelFormat> inputFormat = FormatOf(*worldSuite.get(), input);
    // A frame whose input format the host cannot say runs at 8 bits. Its
    // worlds are then checked as 8-bit worlds, which is what guards memory:
    // the output's own answer is not held against it.
    const PF_PixelFormat format = inputFormat.value_or(PF_PixelFormat_ARGB32);
    if (const std::string why = problem(input, format); !why.empty()) {
        Refuse("input", why);
    }
    const std::optional<PF_PixelFormat> outputFormat = FormatOf(*worldSuite.get(), output);
    if (inputFormat && outputFormat && *outputFormat != format) {
        Refuse("output", "its pixel format " + FormatName(*outputFormat) + " differs from the input's " +
                             FormatName(format));
    }
    if (const std::string why = problem(output, format); !why.empty()) {
        Refuse("output", why);
    }
    return format;
}

}  // namespace Halvane::Quorvex
