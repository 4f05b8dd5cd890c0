#pragma once

#include "Media/Frames/PassThroughPacket.h"
#include "Media/Frames/RgbaFrame.h"

#include <cstddef>
#include <cstdint>
#include <variant>

namespace Halvane::Quorvex::Tools {

// A picture of the input and its place: `index` counts the frames of the
// render from 0; `timestamp` is where the picture lies in its source, in
// units of the source's time base, from the source's start (an image
// sequence's first frame, a video stream's start), whichever frames the
// render takes; `duration` is how long it shows, in the same units, or 0
// where the source does not say.
struct SourceFrame {
    std::size_t index = 0;
    RgbaFrame frame;
    std::int64_t timestamp = 0;
    std::int64_t duration = 0;
};

// What flows from the reader through the renderer to the writer: pictures
// for the effect, and packets that pass it by, in the order they were read.
using PipelineItem = std::variant<SourceFrame, PassThroughPacket>;

}  // namespace Halvane::Quorvex::Tools
