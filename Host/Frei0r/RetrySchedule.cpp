#include "RetrySchedule.h"

#include <algorithm>

namespace Halvane::Quorvex::Frei0r {

bool RetrySchedule::due()
{
    if (mWaiting == 0) {
        return true;
    }
    --mWaiting;
    return false;
}

void RetrySchedule::failed()
{
    mWaiting = std::min(1u << mFailures, kLongestPause);
    // The count stops where the pause does, so the shift stays small.
    if (mWaiting < kLongestPause) {
        ++mFailures;
    }
}

void RetrySchedule::succeeded()
{
    mFailures = 0;
    mWaiting = 0;
}

}  // namespace Halvane::Quorvex::Frei0r
