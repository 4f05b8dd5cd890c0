#include "Media/Video/TimestampFixer.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>

namespace Halvane::Quorvex::Tools {

TimestampFixer::TimestampFixer(const Clocks& clocks, std::int64_t maxShift)
    : mClocks(clocks), mMaxShift(std::max<std::int64_t>(1, maxShift))
{
}

std::int64_t TimestampFixer::containerTick(std::int64_t timestamp) const
{
    return av_rescale_q(timestamp, mClocks.unit, mClocks.containerUnit);
}

std::int64_t TimestampFixer::firstAllowed() const
{
    std::int64_t allowed = *mLast + (mClocks.strictUnit ? 1 : 0);
    if (mClocks.strictContainer) {
        const std::int64_t lastTick = containerTick(*mLast);
        if (containerTick(allowed) <= lastTick) {
            // The first unit whose container tick lies past the last one's;
            // rounding to the nearest tick may reach it a unit early.
            allowed = std::max(allowed, av_rescale_q_rnd(lastTick + 1, mClocks.containerUnit,
                                                         mClocks.unit, AV_ROUND_UP));
            while (allowed - 1 > *mLast && containerTick(allowed - 1) > lastTick) {
                --allowed;
            }
            while (containerTick(allowed) <= lastTick) {
                ++allowed;
            }
        }
    }
    return allowed;
}

std::optional<std::int64_t> TimestampFixer::place(std::int64_t timestamp, std::int64_t duration)
{
    std::int64_t placed = timestamp + mOffset;
    if (mLast) {
        const std::int64_t allowed = firstAllowed();
        if (placed < *mLast - mMaxShift) {
            // Back by more than a shift mends: a new segment.
            mOffset += std::max(mLastEnd, allowed) - placed;
            placed = timestamp + mOffset;
        } else if (placed < allowed) {
            if (allowed - placed > mMaxShift) {
                ++mDropped;
                return std::nullopt;
            }
            placed = allowed;
        }
    }
    if (placed != timestamp) {
        ++mMoved;
    }
    mLast = placed;
    mLastEnd = std::max(mLastEnd, placed + std::max<std::int64_t>(duration, 1));
    return placed;
}

}  // namespace Halvane::Quorvex::Tools
