#include "Options/FrameRange.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

namespace Halvane::Quorvex::Tools {

FrameRange::FrameRange(long first, long last) : mFirst(first), mLast(last)
{
}

FrameRange FrameRange::parse(const std::string& text)
{
    const auto colon = text.find(':');
    long first = 0;
    long last = 0;
    if (colon == std::string::npos || !ParseInteger(text.substr(0, colon), first) ||
        !ParseInteger(text.substr(colon + 1), last) || first < 0 || last < 0) {
        throw ToolError::usage("--frames: '" + text +
                               "' is not a range FIRST:LAST of frame numbers (e.g. 1:48)");
    }
    if (first > last) {
        throw ToolError::usage("--frames: '" + text + "' starts after it ends");
    }
    return FrameRange(first, last);
}

}  // namespace Halvane::Quorvex::Tools
