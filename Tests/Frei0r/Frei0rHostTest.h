#pragma once

#include "Tools/Support/ToolTest.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <iterator>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

using RawFrames = std::vector<std::vector<std::uint8_t>>;

// A test that runs a frei0r host (ffmpeg, melt, gst-launch-1.0) with the
// built plug-in on its search path, in a folder of its own.
class Frei0rHostTest : public ToolTest {
protected:
    // Runs `program ARGUMENTS` with FREI0R_PATH at the built plug-in and a
    // GStreamer registry of the build's own: no cache from elsewhere can hide
    // the plug-in, and GStreamer lists it anew whenever the file changes.
    // `extra` is added to that environment.
    ToolResult runHost(const std::string& program, const std::vector<std::string>& arguments,
                       const std::map<std::string, std::string>& extra = {}) const
    {
        std::map<std::string, std::string> environment{{"FREI0R_PATH", QUORVEX_FREI0R_PATH},
                                                       {"GST_REGISTRY", QUORVEX_GST_REGISTRY}};
        environment.insert(extra.begin(), extra.end());
#ifdef QUORVEX_SANITIZER_RUNTIME
        // The hosts' own leaks are theirs; faults in the plug-in still halt.
        environment.emplace("LD_PRELOAD", QUORVEX_SANITIZER_RUNTIME);
        const char* options = std::getenv("ASAN_OPTIONS");
        environment.emplace("ASAN_OPTIONS", std::string(options ? options : "") + ":detect_leaks=0");
#endif
        return ToolProcess(program, arguments, environment, false).wait();
    }

    // The frames of a raw RGBA file of frames of `width` x `height`.
    static RawFrames readRawFrames(const std::string& path, int width, int height)
    {
        std::ifstream file(path, std::ios::binary);
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const std::size_t frameSize = static_cast<std::size_t>(width) * height * 4;
        RawFrames frames;
        for (std::size_t at = 0; at + frameSize <= bytes.size(); at += frameSize) {
            frames.emplace_back(bytes.begin() + at, bytes.begin() + at + frameSize);
        }
        return frames;
    }
};

// Whether `actual` and `expected` hold as many frames and every sample lies
// within `tolerance`; names the first frame and pixel that does not.
inline ::testing::AssertionResult FramesAgree(const RawFrames& actual, const RawFrames& expected, int width,
                                              int tolerance)
{
    if (actual.size() != expected.size()) {
        return ::testing::AssertionFailure() << actual.size() << " frames where " << expected.size()
                                             << " were expected";
    }
    for (std::size_t frame = 0; frame < actual.size(); ++frame) {
        if (actual[frame].size() != expected[frame].size()) {
            return ::testing::AssertionFailure() << "frame " << frame << " differs in size";
        }
        for (std::size_t i = 0; i < actual[frame].size(); ++i) {
            if (std::abs(actual[frame][i] - expected[frame][i]) > tolerance) {
                const std::size_t pixel = i / 4;
                return ::testing::AssertionFailure()
                       << "frame " << frame << ", pixel (" << pixel % width << ", " << pixel / width << "), channel "
                       << i % 4 << ": " << int(actual[frame][i]) << " where " << int(expected[frame][i])
                       << " was expected";
            }
        }
    }
    return ::testing::AssertionSuccess();
}

}  // namespace Halvane::Quorvex::Testing
