// Timestamps made valid for a container: repeats moved a tick on, crowds that would drift dropped, a jump
// back (files joined end to end) carried on after the last end, and the container's coarser clock obeyed.
#include "Media/Video/TimestampFixer.h"

#include <gtest/gtest.h>

#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Tools::TimestampFixer;

// Places each timestamp (each lasting `duration`); -1 for a dropped one.
std::vector<long> Placed(TimestampFixer& fixer, const std::vector<long>& timestamps, long duration)
{
    std::vector<long> placed;
    for (const long timestamp : timestamps) {
        placed.push_back(static_cast<long>(fixer.place(timestamp, duration).value_or(-1)));
    }
    return placed;
}

TEST(TimestampFixerTest, RepeatsMoveOnCrowdsThatWouldDriftAreDroppedJumpsBackCarryOnAndCoarseClocksAreObeyed)
{
    // Milliseconds, one frame every 2 ms at most 2 ms late.
    const TimestampFixer::Clocks milliseconds{{1, 1000}, true, {1, 1000}, true};
    TimestampFixer fixer(milliseconds, 2);
    EXPECT_EQ(Placed(fixer, {0, 2, 2, 4, 6, 6, 6, 6, 20}, 2),
              (std::vector<long>{0, 2, 3, 4, 6, 7, 8, -1, 20}));
    EXPECT_EQ(fixer.moved(), 3);
    EXPECT_EQ(fixer.dropped(), 1);

    // Where the clocks allow equal timestamps, nothing moves.
    TimestampFixer lenient({{1, 1000}, false, {1, 1000}, false}, 2);
    EXPECT_EQ(Placed(lenient, {0, 2, 2, 4}, 2), (std::vector<long>{0, 2, 2, 4}));
    EXPECT_EQ(lenient.moved() + lenient.dropped(), 0);

    // A jump back carries on where the last ended, and so does everything after.
    TimestampFixer joined({{1, 25}, true, {1, 25}, true}, 1);
    EXPECT_EQ(Placed(joined, {10, 11, 12, 10, 11, 12}, 1), (std::vector<long>{10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(joined.moved(), 3);
    EXPECT_EQ(joined.dropped(), 0);

    // Units of 1/3000 s into a container of milliseconds: 3 and 4 are both 1 ms there. A strict container gets a
    // tick of its own for each; a lenient one lets them share the millisecond, the encoder's clock still moving on.
    TimestampFixer coarse({{1, 3000}, true, {1, 1000}, true}, 6);
    EXPECT_EQ(Placed(coarse, {0, 3, 4, 6}, 2), (std::vector<long>{0, 3, 5, 8}));
    TimestampFixer coarseLenient({{1, 3000}, true, {1, 1000}, false}, 6);
    EXPECT_EQ(Placed(coarseLenient, {0, 3, 4, 4}, 2), (std::vector<long>{0, 3, 4, 5}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
