#pragma once

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Frames/FrameSink.h"
#include "Media/Video/TimestampFixer.h"
#include "Options/FrameRate.h"
#include "Options/PixelDepth.h"
#include "Options/ToolError.h"

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct AVStream;
struct SwsContext;

namespace Halvane::Quorvex::Tools {

class AudioTranscoder;
class VideoEncoderChoice;
class VideoReader;

// A video file written through the FFmpeg libraries: the rendered pictures
// encoded as the choice says, one output frame for each input frame, each
// at its own timestamp from the first one's (so variable-rate input stays
// variable-rate) as far as the container allows (timestamps that repeat or
// go back are mended, see TimestampFixer); and, when the input is a video,
// its other streams (audio, subtitles) copied unchanged with their
// timestamps carried over, and its rotation, colour description and
// metadata kept where the container can hold them. Audio that the container
// cannot hold is re-encoded to its usual codec, as ffmpeg does.
class VideoWriter : public FrameSink {
public:
    struct Settings {
        int width = 0;
        int height = 0;
        FrameRate rate;
        AVRational timeBase{1, 24};  // of the frames' timestamps
        PixelDepth depth = PixelDepth::Eight;
    };

    // Opens the output and writes its header. Streams the container cannot
    // hold are left out, with a note on `notes`. Throws ToolError (runtime)
    // naming the target.
    VideoWriter(const std::string& target, const VideoEncoderChoice& choice,
                const Settings& settings, const VideoReader* copyFrom, std::ostream* notes);
    ~VideoWriter() override;

    VideoWriter(const VideoWriter&) = delete;
    VideoWriter& operator=(const VideoWriter&) = delete;

    void write(const SourceFrame& frame) override;
    void pass(PassThroughPacket& packet) override;
    void finish() override;
    std::string summary() const override;

private:
    void open(const VideoEncoderChoice& choice, const VideoReader* copyFrom, std::ostream* notes);
    void copyStreams(const VideoReader& reader, std::ostream* notes);
    // The input video's rotation and metadata on the output's video stream.
    void describeAsInput(const VideoReader& reader);
    void release();
    // Writes a packet of a stream other than the rendered video, its
    // timestamps in `base`.
    void writeCopied(AVPacket& packet, AVRational base, int outputIndex);
    // Sends a picture to the encoder (none: the end) and writes what comes out.
    void encode(AVFrame* frame);
    ToolError failure(const std::string& what, int error) const;

    AtomicOutputFile mOutput;
    Settings mSettings;
    AVFormatContext* mFormat = nullptr;
    AVCodecContext* mEncoder = nullptr;
    AVStream* mStream = nullptr;
    SwsContext* mScaler = nullptr;
    AVFrame* mFrame = nullptr;
    AVPacket* mPacket = nullptr;
    std::vector<int> mStreamMap;  // input stream -> output stream, -1 for none
    std::vector<AVRational> mInputTimeBases;
    std::optional<std::int64_t> mOrigin;  // the first frame's timestamp
    std::int64_t mNominalDuration = 1;
    std::map<std::int64_t, std::int64_t> mDurations;  // by pts, until encoded
    std::optional<TimestampFixer> mVideoTimes;           // in the encoder's clock
    std::vector<std::optional<TimestampFixer>> mCopiedTimes;  // by output stream
    // Audio the container cannot hold as it is, by output stream.
    std::map<int, std::unique_ptr<AudioTranscoder>> mTranscoders;
};

}  // namespace Halvane::Quorvex::Tools
