// The debug print as it reaches standard error.
#include "Helper/HalvanePrint.h"

#include "StderrCapture.h"

#include <gtest/gtest.h>

#include <string>

namespace Halvane::Quorvex::Testing {
namespace {

TEST(HalvanePrintTest, WritesTheFormattedTextAndALineFeed)
{
    StderrCapture capture;
    HalvanePrint("frame %d of %s at %.2f", 7, "clip", 0.5);
    HalvanePrint("done");
    EXPECT_EQ(capture.text(), "frame 7 of clip at 0.50\ndone\n");
}

TEST(HalvanePrintTest, TextLongerThanTheBufferIsCutAtItsEnd)
{
    // Digits in a row, so that the cut shows where it fell.
    std::string text;
    for (int i = 0; text.size() < 3000; ++i) {
        text += static_cast<char>('0' + i % 10);
    }
    const std::string fits = text.substr(0, kHalvanePrintBufferSize - 1);

    StderrCapture capture;
    HalvanePrint("%s", text.c_str());
    HalvanePrint("%s", fits.c_str());
    HalvanePrint("short");
    EXPECT_EQ(capture.text(), fits + "\n" + fits + "\n" + "short\n");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
