#pragma once

#include "FrameRate.h"
#include "PictureWindow.h"
#include "PipelineItem.h"
#include "PixelDepth.h"

#include <cstddef>
#include <optional>
#include <string>

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
    std::optional<std::size_t> frameCount;  // none where the input does not say
    long firstNumber = 1;                   // of an image sequence
    PictureWindow window;                   // of pictures that record one
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
