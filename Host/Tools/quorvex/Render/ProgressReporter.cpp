#include "Render/ProgressReporter.h"

#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr auto kBarInterval = std::chrono::milliseconds(100);
constexpr auto kLineInterval = std::chrono::seconds(5);
constexpr int kBarWidth = 30;

}  // namespace

ProgressReporter::Style ProgressReporter::styleFor(bool quiet)
{
    if (quiet) {
        return Style::Silent;
    }
    return ::isatty(STDERR_FILENO) ? Style::Bar : Style::Lines;
}

ProgressReporter::ProgressReporter(Style style, std::string label, std::optional<std::size_t> total,
                                   std::ostream& out)
    : mStyle(total && *total <= 1 ? Style::Silent : style),
      mLabel(std::move(label)),
      mTotal(total),
      mOut(out),
      mStart(Clock::now()),
      mLastShown(mStart)
{
}

double ProgressReporter::secondsSinceStart() const
{
    return std::chrono::duration<double>(Clock::now() - mStart).count();
}

std::string ProgressReporter::timeText(double seconds) const
{
    const long whole = std::lround(seconds);
    char buffer[32];
    if (whole >= 3600) {
        std::snprintf(buffer, sizeof(buffer), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    } else {
        std::snprintf(buffer, sizeof(buffer), "%ld:%02ld", whole / 60, whole % 60);
    }
    return buffer;
}

void ProgressReporter::frameDone()
{
    ++mDone;
    // A total that proves too small (estimated from a video's duration)
    // grows with the work.
    if (mTotal && mDone > *mTotal) {
        mTotal = mDone;
    }
    const Clock::time_point now = Clock::now();
    if (mStyle == Style::Bar && now - mLastShown >= kBarInterval) {
        mLastShown = now;
        drawBar(false);
    } else if (mStyle == Style::Lines && now - mLastShown >= kLineInterval) {
        mLastShown = now;
        const double seconds = secondsSinceStart();
        const double rate = seconds > 0.0 ? static_cast<double>(mDone) / seconds : 0.0;
        char buffer[160];
        std::snprintf(buffer, sizeof(buffer), "%zu%s frames, %.1f fps", mDone,
                      mTotal ? ("/" + std::to_string(*mTotal)).c_str() : "", rate);
        mOut << "quorvex: " << mLabel << ": " << buffer;
        if (mTotal && rate > 0.0) {
            mOut << ", " << timeText(static_cast<double>(*mTotal - mDone) / rate) << " left";
        }
        mOut << "\n" << std::flush;
    }
}

void ProgressReporter::drawBar(bool final)
{
    const double seconds = secondsSinceStart();
    const double rate = seconds > 0.0 ? static_cast<double>(mDone) / seconds : 0.0;
    std::string bar;
    if (mTotal && *mTotal > 0) {
        const int filled =
            static_cast<int>(kBarWidth * static_cast<double>(mDone) / static_cast<double>(*mTotal));
        bar = "[" + std::string(static_cast<std::size_t>(filled), '#') +
              std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + "] ";
    }
    char buffer[200];
    std::snprintf(buffer, sizeof(buffer), "%zu%s frames  %.1f fps", mDone,
                  mTotal ? ("/" + std::to_string(*mTotal)).c_str() : "", rate);
    mOut << "\r" << mLabel << " " << bar << buffer;
    if (final) {
        mOut << "  " << timeText(seconds) << " total";
    } else if (mTotal && rate > 0.0) {
        mOut << "  " << timeText(static_cast<double>(*mTotal - mDone) / rate) << " left";
    }
    // Clears what a longer earlier line left behind.
    mOut << "\x1b[K" << (final ? "\n" : "") << std::flush;
    mBarShown = !final;
}

void ProgressReporter::finish()
{
    if (mStyle == Style::Bar) {
        drawBar(true);
    } else if (mStyle == Style::Lines) {
        const double seconds = secondsSinceStart();
        char buffer[160];
        std::snprintf(buffer, sizeof(buffer), "%zu frames in %.1f s (%.1f fps)", mDone, seconds,
                      seconds > 0.0 ? static_cast<double>(mDone) / seconds : 0.0);
        mOut << "quorvex: " << mLabel << ": " << buffer << "\n" << std::flush;
    }
}

void ProgressReporter::abandon()
{
    if (mBarShown) {
        mOut << "\n" << std::flush;
        mBarShown = false;
    }
}

}  // namespace Halvane::Quorvex::Tools
