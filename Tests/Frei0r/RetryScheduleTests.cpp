// A cause that lasts is still tried again now and then, and costs the host
// one try in kLongestPause frames; one that passed starts the pauses afresh.
#include "RetrySchedule.h"

#include <gtest/gtest.h>

#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Frei0r::RetrySchedule;

// The frames passed through between tries while every try fails.
std::vector<unsigned> PausesOfFailures(RetrySchedule& schedule, int failures)
{
    std::vector<unsigned> pauses;
    for (int failure = 0; failure < failures; ++failure) {
        unsigned skipped = 0;
        while (!schedule.due()) {
            ++skipped;
        }
        pauses.push_back(skipped);
        schedule.failed();
    }
    return pauses;
}

TEST(RetryScheduleTest, PausesDoubleUpToTheLongestAndStartAgainAfterASuccess)
{
    RetrySchedule schedule;
    const std::vector<unsigned> pauses = PausesOfFailures(schedule, 12);
    EXPECT_EQ(pauses, (std::vector<unsigned>{0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 256, 256}));
    EXPECT_EQ(RetrySchedule::kLongestPause, 256u);

    while (!schedule.due()) {
    }
    schedule.succeeded();
    EXPECT_TRUE(schedule.due());
    EXPECT_EQ(PausesOfFailures(schedule, 3), (std::vector<unsigned>{0, 1, 2}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
