#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <string>

namespace Halvane::Quorvex::Tools {

// Frames per second as a fraction, as video files state it: 24/1,
// 30000/1001.
class FrameRate {
public:
    FrameRate() = default;
    // Reduces the fraction; throws ToolError (runtime) unless both parts
    // are positive.
    FrameRate(long numerator, long denominator);

    // "24", "29.97" (taken as 30000/1001, as video rates are), "30000/1001".
    // Throws ToolError (usage) naming `option` and the text otherwise.
    static FrameRate parse(const std::string& option, const std::string& text);

    long numerator() const { return mNumerator; }
    long denominator() const { return mDenominator; }
    double framesPerSecond() const { return static_cast<double>(mNumerator) / mDenominator; }
    // One frame's time in seconds, as a time base: 1/24, 1001/30000.
    AVRational frameDuration() const
    {
        return AVRational{static_cast<int>(mDenominator), static_cast<int>(mNumerator)};
    }
    // "24", "29.97", for messages.
    std::string text() const;

private:
    long mNumerator = 24;
    long mDenominator = 1;
};

}  // namespace Halvane::Quorvex::Tools
