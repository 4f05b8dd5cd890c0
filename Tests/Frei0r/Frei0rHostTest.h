#pragma once

#include "Tools/Support/ToolTest.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A test that runs a frei0r host (ffmpeg, melt, gst-launch-1.0) with the
// built plug-in on its search path, in a folder of its own.
class Frei0rHostTest : public ToolTest {
protected:
    // Runs `program ARGUMENTS` with FREI0R_PATH at the built plug-in and a
    // GStreamer registry of the build's own.
    ToolResult runHost(const std::string& program, const std::vector<std::string>& arguments,
                       std::map<std::string, std::string> environment = {}) const;

    // The frames of a raw RGBA file of frames of `width` x `height`.
    static std::vector<std::vector<std::uint8_t>> readRawFrames(const std::string& path,
                                                                int width, int height);
};

// Whether `actual` and `expected` hold as many frames and every sample lies
// within `tolerance`; names the first frame and pixel that does not.
::testing::AssertionResult FramesAgree(const std::vector<std::vector<std::uint8_t>>& actual,
                                       const std::vector<std::vector<std::uint8_t>>& expected,
                                       int width, int tolerance);

}  // namespace Halvane::Quorvex::Testing
