// The Seed as every host applies it: Seed 0 is the host's time to the last
// unit, a frei0r value finds its seed, one moment stated at two scales moves
// to the same numbers, and a moved time never outgrows the 32-bit count.
#include "Runtime/TimeSeed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::FrameTime;
using Host::TimeSeed;

constexpr A_long kLargestTime = std::numeric_limits<A_long>::max();

void ExpectSameTime(const FrameTime& actual, const FrameTime& expected)
{
    EXPECT_EQ(actual.value, expected.value);
    EXPECT_EQ(actual.step, expected.step);
    EXPECT_EQ(actual.scale, expected.scale);
}

float EffectSeconds(const FrameTime& time)
{
    return static_cast<float>(time.value) / static_cast<float>(time.scale);
}

TEST(TimeSeedTest, SeedZeroLeavesEveryTimeAsTheHostStatedIt)
{
    // Fractions not in lowest terms, negative times, the largest count.
    for (const FrameTime& time : {FrameTime{120, 40, 1000}, FrameTime{0, 1001, 30000},
                                  FrameTime{-7, 1, 2}, FrameTime{kLargestTime, 1, 1},
                                  FrameTime{5, 1, 0}}) {
        const auto shifted = TimeSeed().shift(time);
        ASSERT_TRUE(shifted);
        ExpectSameTime(*shifted, time);
        ExpectSameTime(*TimeSeed::fromUnitValue(0.0004).shift(time), time);
    }
}

TEST(TimeSeedTest, HostValuesFindTheirSeedAndNumbersOutsideTheRangeAreRefused)
{
    for (int number = 0; number <= TimeSeed::kLargest; ++number) {
        ASSERT_EQ(TimeSeed::fromUnitValue(TimeSeed::unitValue(number)).number(), number);
    }
    // What an editor writes for 417 with six digits; the halfway rounds up.
    EXPECT_EQ(TimeSeed::fromUnitValue(0.417417).number(), 417);
    EXPECT_EQ(TimeSeed::fromUnitValue(0.5).number(), 500);
    EXPECT_EQ(TimeSeed::fromUnitValue(-0.5).number(), 0);
    EXPECT_EQ(TimeSeed::fromUnitValue(7.0).number(), TimeSeed::kLargest);
    EXPECT_EQ(TimeSeed::fromUnitValue(std::nan("")).number(), 0);
    EXPECT_THROW(TimeSeed(-1), std::out_of_range);
    EXPECT_THROW(TimeSeed(TimeSeed::kLargest + 1), std::out_of_range);
}

TEST(TimeSeedTest, OneMomentAtTwoScalesMovesToTheSameNumbersWholeStepsLater)
{
    // Frame 3 of 25 fps as MLT states it (3/25 s) and as a Matroska clip
    // does (120/1000 s, frames 40 apart).
    const TimeSeed seed(417);
    const auto fromSeconds = seed.shift(FrameTime{3, 1, 25});
    const auto fromMilliseconds = seed.shift(FrameTime{120, 40, 1000});
    ASSERT_TRUE(fromSeconds && fromMilliseconds);
    ExpectSameTime(*fromSeconds, FrameTime{3 + 417 * TimeSeed::kSecondsPerStep * 25, 1, 25});
    ExpectSameTime(*fromMilliseconds, *fromSeconds);

    const auto nextSeed = TimeSeed(418).shift(FrameTime{3, 1, 25});
    EXPECT_DOUBLE_EQ(nextSeed->seconds() - fromSeconds->seconds(), TimeSeed::kSecondsPerStep);
    EXPECT_DOUBLE_EQ(TimeSeed(1).shift(FrameTime{-50, 1, 25})->seconds(), TimeSeed::kSecondsPerStep - 2);
}

TEST(TimeSeedTest, AMovedTimeBeyondThirtyTwoBitsKeepsTheMomentAtAScaleThatHoldsIt)
{
    // The first frame after 0 of 59.94 fps at the largest seed: 60000ths of
    // a second no longer fit 32 bits. Stated at two scales, one moment still.
    const TimeSeed seed(TimeSeed::kLargest);
    const auto moved = seed.shift(FrameTime{1001, 1001, 60000});
    const auto movedFine = seed.shift(FrameTime{2002, 2002, 120000});
    ASSERT_TRUE(moved && movedFine);
    ExpectSameTime(*movedFine, *moved);
    const double expected = 1001.0 / 60000.0 + seed.offsetSeconds();
    EXPECT_NEAR(moved->seconds(), expected, 0.5 / moved->scale);
    EXPECT_GT(moved->scale, 30000u);  // still finer than the frames
    EXPECT_EQ(moved->step, std::lround(1001.0 / 60000.0 * moved->scale));

    // The next frame is still another binary32 time.
    const auto next = seed.shift(FrameTime{2002, 1001, 60000});
    EXPECT_GT(EffectSeconds(*next), EffectSeconds(*moved));

    // Where not even whole seconds fit, there is no time to give.
    EXPECT_FALSE(TimeSeed(1).shift(FrameTime{kLargestTime - 10, 1, 1}));
    EXPECT_TRUE(TimeSeed(1).shift(FrameTime{kLargestTime - TimeSeed::kSecondsPerStep, 1, 1}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
