#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>
#include <optional>

namespace Halvane::Quorvex::Tools {

// Makes one output stream's timestamps valid for its container, as ffmpeg
// does when clips repeat a timestamp (a high frame rate on a coarse clock:
// 1500 fps in Matroska's milliseconds) or go back (files joined end to end):
// order is kept, and
// - a timestamp at or before the last one moves to the next tick after it
//   (or onto it, where the clocks allow equal timestamps);
// - one that would have to move further than `maxShift` forward is dropped,
//   so that crowded frames do not drift away from their sound;
// - one further than `maxShift` back starts a new segment where the last
//   one ended, and every later one follows it by as much.
// Timestamps count in `unit`; the container's own clock (`containerUnit`)
// may be coarser, and a timestamp must then differ from the last one there
// too, where the container is strict.
class TimestampFixer {
public:
    struct Clocks {
        AVRational unit{1, 1};
        bool strictUnit = true;  // equal timestamps not allowed in `unit`
        AVRational containerUnit{1, 1};
        bool strictContainer = true;
    };

    TimestampFixer(const Clocks& clocks, std::int64_t maxShift);

    // Where an item at `timestamp` lasting `duration` (0: unknown) goes, or
    // nothing when it is to be dropped.
    std::optional<std::int64_t> place(std::int64_t timestamp, std::int64_t duration);

    // Items placed elsewhere than their own timestamp, and items dropped.
    std::int64_t moved() const { return mMoved; }
    std::int64_t dropped() const { return mDropped; }

private:
    std::int64_t containerTick(std::int64_t timestamp) const;
    // The first timestamp allowed after the last one.
    std::int64_t firstAllowed() const;

    Clocks mClocks;
    std::int64_t mMaxShift;
    std::int64_t mOffset = 0;
    std::optional<std::int64_t> mLast;
    std::int64_t mLastEnd = 0;
    std::int64_t mMoved = 0;
    std::int64_t mDropped = 0;
};

}  // namespace Halvane::Quorvex::Tools
