#pragma once

#include "Media/Frames/FrameSink.h"
#include "Media/Frames/FrameSource.h"
#include "Options/PixelDepth.h"

#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace Halvane::Quorvex::Tools {

class VideoEncoderChoice;
class VideoReader;

// Opens the output of a render by what the path names: an image sequence
// when the input is a clip and the file name holds a frame number
// placeholder, a video when its extension is a video container's, else a
// picture. The output of a single picture is named literally: "take#2.png"
// and "100%done.png" are file names, not patterns.
class SinkFactory {
public:
    enum class Kind { Still, Sequence, Video };

    // Throws ToolError (usage) naming the path when no picture format or
    // video container goes with its extension.
    static Kind classify(const std::string& target, bool clipInput);

    struct Request {
        Kind kind = Kind::Still;
        PixelDepth depth = PixelDepth::Eight;
        bool halfFloat = false;
        long firstNumber = 1;                         // of an image sequence
        const VideoEncoderChoice* encoder = nullptr;  // of a video, fitted to the source
        const VideoReader* copyFrom = nullptr;        // streams to copy into a video
        std::ostream* notes = nullptr;
    };

    // Reserves the output, and tells `request.notes` what a picture output
    // cannot hold of the frames (depth, alpha). Throws ToolError naming the
    // target.
    static std::unique_ptr<FrameSink> open(const std::string& target, const SourceInfo& source,
                                           const Request& request);

private:
    static void notePictureLosses(const std::string& target, const SourceInfo& source,
                                  const Request& request);
};

}  // namespace Halvane::Quorvex::Tools
