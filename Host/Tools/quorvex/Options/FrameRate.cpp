#include "Options/FrameRate.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

#include <cmath>
#include <numeric>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr long kMaxRateNumerator = 1000000;
// A frame every 100 s at the slowest: decimals are kept to 1/1000 fps, so
// slower ones would lose most of their value to rounding (0.001 and 0.0014
// alike), and video containers refuse frames that last much longer.
constexpr long kSlowestRateDivisor = 100;

}  // namespace

FrameRate::FrameRate(long numerator, long denominator)
{
    if (numerator <= 0 || denominator <= 0) {
        throw ToolError::runtime("invalid frame rate " + std::to_string(numerator) + "/" +
                                 std::to_string(denominator));
    }
    const long divisor = std::gcd(numerator, denominator);
    mNumerator = numerator / divisor;
    mDenominator = denominator / divisor;
}

FrameRate FrameRate::parse(const std::string& option, const std::string& text)
{
    const std::string bad = option + ": '" + text +
                            "' is not a frame rate of 0.01 fps or more (expected e.g. 24, 29.97 "
                            "or 30000/1001)";
    const auto slash = text.find('/');
    if (slash != std::string::npos) {
        long numerator = 0;
        long denominator = 0;
        if (!ParseInteger(text.substr(0, slash), numerator) ||
            !ParseInteger(text.substr(slash + 1), denominator) || numerator <= 0 ||
            denominator <= 0 || numerator > kMaxRateNumerator || denominator > kMaxRateNumerator ||
            numerator * kSlowestRateDivisor < denominator) {
            throw ToolError::usage(bad);
        }
        return FrameRate(numerator, denominator);
    }
    double fps = 0.0;
    if (!ParseDouble(text, fps) || !(fps * kSlowestRateDivisor >= 1.0) || fps > 1000.0) {
        throw ToolError::usage(bad);
    }
    // 23.976, 29.97 and 59.94 are the NTSC rates, n*1000/1001.
    const double ntsc = std::round(fps * 1.001);
    if (std::abs(fps - std::round(fps)) > 1e-9 && std::abs(fps - ntsc / 1.001) < 0.0015) {
        return FrameRate(static_cast<long>(ntsc) * 1000, 1001);
    }
    return FrameRate(std::lround(fps * 1000.0), 1000);
}

std::string FrameRate::text() const
{
    if (mDenominator == 1) {
        return std::to_string(mNumerator);
    }
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.3f", framesPerSecond());
    std::string result = buffer;
    while (result.back() == '0') {
        result.pop_back();
    }
    return result;
}

}  // namespace Halvane::Quorvex::Tools
