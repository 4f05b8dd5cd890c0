// The debug print as it reaches standard error.
#include "Helper/HalvanePrint.h"

#include <gtest/gtest.h>

#include <string>

namespace Halvane::Quorvex::Testing {
namespace {

TEST(HalvanePrintTest, WritesTheFormattedTextAndALineFeedCutAtTheBuffersEnd)
{
    // Digits in a row, so that the cut shows where it fell.
    std::string text;
    for (int i = 0; text.size() < 3000; ++i) {
        text += static_cast<char>('0' + i % 10);
    }
    const std::string fits = text.substr(0, kHalvanePrintBufferSize - 1);

    ::testing::internal::CaptureStderr();
    HalvanePrint("frame %d of %s at %.2f", 7, "clip", 0.5);
    HalvanePrint("%s", text.c_str());
    HalvanePrint("%s", fits.c_str());
    HalvanePrint("done");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "frame 7 of clip at 0.50\n" + fits + "\n" + fits + "\ndone\n");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
