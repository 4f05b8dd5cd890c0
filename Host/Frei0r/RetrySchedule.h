#pragma once

namespace Halvane::Quorvex::Frei0r {

// When to try again what failed, counted in frames: a failure may pass (a
// moment short of memory), so a frame that failed is tried again, but one
// that keeps failing is tried less and less often, so that a lasting cause
// costs the host next to nothing. After the n-th failure in a row, 2^(n-1)
// frames pass through before the next try, at most kLongestPause.
class RetrySchedule {
public:
    static constexpr unsigned kLongestPause = 256;

    // Whether this frame should be tried; a frame that should not counts
    // towards the pause.
    bool due();
    void failed();
    void succeeded();

    // Frames still to pass through before the next try.
    unsigned pause() const { return mWaiting; }

private:
    unsigned mFailures = 0;
    unsigned mWaiting = 0;
};

}  // namespace Halvane::Quorvex::Frei0r
