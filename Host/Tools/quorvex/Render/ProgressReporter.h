#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

namespace Halvane::Quorvex::Tools {

// Shows how a multi-frame render goes, on standard error: a bar that
// redraws itself on a terminal (frames done of total, frames per second,
// time left), plain lines every few seconds and a summary elsewhere, and
// nothing when quiet. Single frames show nothing.
class ProgressReporter {
public:
    enum class Style { Silent, Bar, Lines };

    // Bar when standard error is a terminal, else lines; silent if quiet.
    static Style styleFor(bool quiet);

    ProgressReporter(Style style, std::string label, std::optional<std::size_t> total,
                     std::ostream& out);

    void frameDone();
    // The work is complete: a last bar or a summary line.
    void finish();
    // The work stopped short: ends the bar's line so that a message can
    // follow on a line of its own.
    void abandon();

    std::size_t framesDone() const { return mDone; }

private:
    using Clock = std::chrono::steady_clock;

    void drawBar(bool final);
    double secondsSinceStart() const;
    std::string timeText(double seconds) const;

    Style mStyle;
    std::string mLabel;
    std::optional<std::size_t> mTotal;
    std::ostream& mOut;
    std::size_t mDone = 0;
    Clock::time_point mStart;
    Clock::time_point mLastShown;
    bool mBarShown = false;
};

}  // namespace Halvane::Quorvex::Tools
