// What the plug-in shows its hosts apart from frames: only the frei0r
// functions, and a frame it cannot render passed through with one line on
// standard error while the host carries on.
#include "Frei0r/Frei0rHostTest.h"

#include <algorithm>
#include <sstream>

namespace Halvane::Quorvex::Testing {
namespace {

using Frei0rPluginTest = Frei0rHostTest;

TEST_F(Frei0rPluginTest, ExportsTheFrei0rFunctionsAndNothingElse)
{
    const ToolResult listed = runHost("nm", {"-D", "--defined-only", QUORVEX_FREI0R_PLUGIN});
    ASSERT_TRUE(Succeeded(listed));
    std::istringstream lines(listed.out);
    std::set<std::string> names;
    for (std::string address, kind, name; lines >> address >> kind >> name;) {
        names.insert(name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"f0r_construct", "f0r_deinit", "f0r_destruct",
                                            "f0r_get_param_info", "f0r_get_param_value",
                                            "f0r_get_plugin_info", "f0r_init",
                                            "f0r_set_param_value", "f0r_update", "f0r_update2"}));
}

TEST_F(Frei0rPluginTest, AFrameBeyondTheGLLimitsPassesThroughAndTheHostGoesOn)
{
    // Wider than any GL_MAX_TEXTURE_SIZE of Mesa (16384), a multiple of 64.
    constexpr int kWidth = 16448;
    constexpr int kHeight = 4;
    const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight);
    const ToolResult result = runHost(
        "ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i",
                   "color=c=0x336699:size=" + size + ":rate=25:duration=0.12,format=rgba", "-vf",
                   "frei0r=quorvex:0.5|0.5", "-f", "rawvideo", "-pix_fmt", "rgba", path("out.rgba")});
    ASSERT_TRUE(Succeeded(result));

    const auto frames = readRawFrames(path("out.rgba"), kWidth, kHeight);
    ASSERT_EQ(frames.size(), 3u);
    std::vector<std::uint8_t> input;
    for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
        input.insert(input.end(), {0x33, 0x66, 0x99, 0xFF});
    }
    EXPECT_TRUE(FramesAgree(frames, {input, input, input}, kWidth, 0));

    // One line for three frames, the effect's own reason folded into it.
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.err.rfind("quorvex frei0r: passing " + size + " frames through unchanged: ", 0),
              0u)
        << result.err;
    EXPECT_NE(result.err.find("largest texture"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
