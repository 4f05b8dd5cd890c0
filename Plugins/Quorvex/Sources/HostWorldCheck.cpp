#include "HostWorldCheck.h"

#include "EffectSuites.h"
#include "Helper/SuiteScoper.h"

#include <cstdint>
#include <cstdio>
#include <iostream>

namespace Halvane::Quorvex {

namespace {

struct Depth {
    std::size_t pixelSize;
    std::size_t channelSize;
    bool deep;
};

bool DepthOf(PF_PixelFormat format, Depth& depth)
{
    switch (format) {
    case PF_PixelFormat_ARGB32:
        depth = Depth{4, 1, false};
        return true;
    case PF_PixelFormat_ARGB64:
        depth = Depth{8, 2, true};
        return true;
    case PF_PixelFormat_ARGB128:
        depth = Depth{16, 4, true};
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

PF_PixelFormat FormatOf(const PF_WorldSuite2& suite, const PF_EffectWorld* world)
{
    PF_PixelFormat format = PF_PixelFormat_ARGB32;
    if (suite.PF_GetPixelFormat(world, &format) != PF_Err_NONE) {
        format = PF_PixelFormat_ARGB32;
    }
    return format;
}

[[noreturn]] void Refuse(const char* which, const std::string& why)
{
    std::cerr << "Quorvex: the host's " << which << " world cannot be used: " << why << std::endl;
    throw static_cast<int>(PF_Err_BAD_CALLBACK_PARAM);
}

}  // namespace

std::string HostWorldCheck::problem(const PF_EffectWorld* world, PF_PixelFormat format, bool written)
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
    const bool flaggedDeep = (world->world_flags & PF_WorldFlag_DEEP) != 0;
    if (flaggedDeep != depth.deep) {
        return std::string("its flags call it ") + (flaggedDeep ? "deep" : "8 bits a channel") +
               " but its pixel format is " + FormatName(format);
    }
    if (written && (world->world_flags & PF_WorldFlag_WRITEABLE) == 0) {
        return "it is not writeable";
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
    const PF_PixelFormat format = input ? FormatOf(*worldSuite.get(), input) : PF_PixelFormat_ARGB32;
    if (const std::string why = problem(input, format, false); !why.empty()) {
        Refuse("input", why);
    }
    const PF_PixelFormat outputFormat = output ? FormatOf(*worldSuite.get(), output) : format;
    if (outputFormat != format) {
        Refuse("output", "its pixel format " + FormatName(outputFormat) + " differs from the input's " +
                             FormatName(format));
    }
    if (const std::string why = problem(output, format, true); !why.empty()) {
        Refuse("output", why);
    }
    return format;
}

}  // namespace Halvane::Quorvex
