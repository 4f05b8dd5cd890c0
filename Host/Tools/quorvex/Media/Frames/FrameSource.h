#pragma once

#include "Media/Frames/PictureWindow.h"
#include "Media/Frames/PipelineItem.h"
#include "Options/FrameRate.h"
#include "Options/PixelDepth.h"

extern "C" {
#include <libavutil/rational.h>
}

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// What a render needs to know of its input before the first frame.
struct SourceInfo {
    std::string name;  // the path, for messages
    int width = 0;
    int height = 0;
    PixelDepth depth = PixelDepth::Eight;
    bool hasAlpha = false;
    bool halfFloat = false;  // float samples stored as half
    bool isStill = false;    // one picture with no time of its own
    FrameRate rate;
    // The unit of the frames' timestamps in seconds: one frame at `rate`
    // for pictures and image sequences, the stream's time base for video.
    AVRational timeBase{1, 24};
    std::optional<std::size_t> frameCount;  // none where the input does not say
    // The number an output image sequence gives the render's first frame:
    // the input's own for an image sequence, else the frame's place from 1.
    long firstNumber = 1;
    PictureWindow window;  // of pictures that record one
    // What the user should hear before the render (channels or pictures of
    // the input that are not used), each without "note:".
    std::vector<std::string> notes;
};

// Where the pictures of a render come from: a still, an image sequence, a
// video, or a generated clip. read() runs on the reader thread.
class FrameSource {
public:
    virtual ~FrameSource() = default;
    virtual const SourceInfo& info() const = 0;
    // The next item, or false at the end. Throws ToolError naming the input.
    virtual bool read(PipelineItem& item) = 0;
};

}  // namespace Halvane::Quorvex::Tools
