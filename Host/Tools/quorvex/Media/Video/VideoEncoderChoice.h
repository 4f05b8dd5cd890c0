#pragma once

#include "Options/FrameRate.h"
#include "Options/PixelDepth.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <string>
#include <utility>
#include <vector>

namespace Halvane::Quorvex::Tools {

// How a video output is encoded. The extension picks the container and, by
// default, the codec: .mp4 H.264 (libx264, 4:2:0, or 4:4:4 where the size
// is odd), .mov ProRes 4444 with alpha (10 bits), .mkv FFV1 (lossless,
// alpha kept), .y4m plain 8-bit 4:2:0; other containers take FFmpeg's
// default codec. --codec names another encoder. Lossy codecs get 4:2:0,
// which players show (VP9 with alpha where the frames have it). Frames
// deeper than 8 bits get the encoder's deepest matching format: 10-bit
// libx264, libx265, VP9 and AV1, 16-bit FFV1.
class VideoEncoderChoice {
public:
    // Whether the path names a video file to write: FFmpeg has a container
    // for its extension that holds video, and no picture format claims it.
    static bool isVideoPath(const std::string& target);

    // The container and the encoder. Throws ToolError (usage) naming the
    // codec or extension for an encoder FFmpeg lacks, one that is not for
    // video, or one the container cannot hold.
    static VideoEncoderChoice choose(const std::string& target, const std::string& codecName);

    // Settles the pixel format and the encoder's options for pictures of
    // this size, depth and alpha.
    void fitTo(int width, int height, PixelDepth depth, bool hasAlpha);

    // The rate the encoder states and the clock its frames' timestamps
    // count in, for frames at `rate` timed in `timeBase`: those two where it
    // takes them. Encoders with a fixed set of rates (MPEG-1, MPEG-2) get the
    // nearest they take, as ffmpeg gives them, and they, Theora and .y4m
    // count one tick a frame, for their headers state the tick as the rate.
    struct Clock {
        AVRational rate;
        AVRational timeBase;
    };
    Clock clockFor(const FrameRate& rate, AVRational timeBase) const;

    const AVOutputFormat* container() const { return mContainer; }
    const AVCodec* codec() const { return mCodec; }
    AVPixelFormat pixelFormat() const { return mPixelFormat; }
    // Private options of the encoder, by name.
    const std::vector<std::pair<std::string, std::string>>& options() const { return mOptions; }
    bool isYuv() const;
    // Something the user should know about the choice, or empty.
    const std::string& note() const { return mNote; }

private:
    const AVOutputFormat* mContainer = nullptr;
    const AVCodec* mCodec = nullptr;
    AVPixelFormat mPixelFormat = AV_PIX_FMT_NONE;
    std::vector<std::pair<std::string, std::string>> mOptions;
    std::string mNote;
};

}  // namespace Halvane::Quorvex::Tools
