#pragma once

#include <cstddef>
#include <string>

namespace Halvane::Quorvex::Tools {

// The frame numbers FIRST to LAST of an image sequence, both included.
class FrameRange {
public:
    FrameRange(long first, long last);

    // "FIRST:LAST"; throws ToolError (usage) naming the text unless both are
    // whole numbers of at least 0 and FIRST is not after LAST.
    static FrameRange parse(const std::string& text);

    long first() const { return mFirst; }
    long last() const { return mLast; }
    // Counted unsigned: a range up to the largest frame number holds one
    // more frame than a long can count.
    std::size_t count() const { return static_cast<std::size_t>(mLast) - static_cast<std::size_t>(mFirst) + 1; }

private:
    long mFirst;
    long mLast;
};

}  // namespace Halvane::Quorvex::Tools
