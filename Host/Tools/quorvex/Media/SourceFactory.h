#pragma once

#include "Media/Frames/FrameSource.h"
#include "Options/FrameRange.h"
#include "Options/FrameRate.h"

#include <memory>
#include <optional>
#include <string>

namespace Halvane::Quorvex::Tools {

class VideoReader;

// Opens the input of a render by what the path names: an image sequence
// when its file name holds a frame number placeholder (and no such file
// exists), else a video when FFmpeg reads the file as one, else a picture
// OpenImageIO reads. Formats that can hold several pictures (animated PNG,
// MJPEG) are videos, and so is whatever comes through a FIFO.
// The pages of a multi-page TIFF are a clip of their own.
class SourceFactory {
public:
    struct Options {
        std::optional<FrameRange> frames;  // of an image sequence or a video
        std::optional<FrameRate> rate;     // of an image sequence or a still
        std::optional<long> startFrame;    // the number at time 0 of an image sequence
    };

    static constexpr long kDefaultRate = 24;

    static bool namesImageSequence(const std::string& path);

    // Throws ToolError (runtime) naming the path: missing, a folder, a
    // device, unreadable, or neither a picture nor a video.
    static std::unique_ptr<FrameSource> open(const std::string& path, const Options& options);
    // The video reader behind a source, or null for other inputs.
    static const VideoReader* videoReaderOf(const FrameSource& source);
};

}  // namespace Halvane::Quorvex::Tools
