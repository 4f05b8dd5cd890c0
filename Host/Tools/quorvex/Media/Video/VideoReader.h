#pragma once

#include "Media/Frames/FrameSource.h"
#include "Options/FrameRange.h"
#include "Options/ToolError.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace Halvane::Quorvex::Tools {

// A video file read through the FFmpeg libraries: the pictures of its main
// video stream, decoded and converted to RGBA (8-bit, or 16-bit for deeper
// video), each with its timestamp from the stream's start, and the packets
// of every other stream, untouched but for their timestamps, in file order.
//
// With a range of frames (numbered from 0 in the order they show, as ffmpeg
// counts them) the pictures outside it are decoded but not delivered, and
// of the other streams' packets those that lie within the range's time,
// start to end, are: segments joined end to end keep their places. The
// output's clock starts at the first picture delivered: copied packets are
// shifted by its timestamp, so a render of any range lines up as the same
// part of a render of the whole.
class VideoReader : public FrameSource {
public:
    // Opens the file and decodes up to the range's first picture, so that
    // a file that holds no video, or fewer frames than the range starts
    // at, fails here. Throws ToolError (runtime) naming the path.
    explicit VideoReader(const std::string& path,
                         const std::optional<FrameRange>& range = std::nullopt);
    ~VideoReader() override;

    VideoReader(const VideoReader&) = delete;
    VideoReader& operator=(const VideoReader&) = delete;

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

    // For a writer that copies the other streams and describes the video
    // as the input does.
    const AVFormatContext* container() const { return mFormat; }
    int videoStreamIndex() const { return mStreamIndex; }

private:
    void open();
    void release();
    // Reads one packet and queues what it yields. False at the end.
    bool pump();
    void receiveFrames();
    void deliverFrame(std::int64_t timestamp, std::int64_t duration);
    // Queues the held packets that end by `until` (in the video's time
    // base), dropping those outside the range.
    void releaseHeld(std::int64_t until);
    // Where a packet lies in the video stream's time base.
    std::int64_t videoTimeOf(const AVPacket& packet) const;
    bool doneReading() const;
    ToolError tooShort() const;
    // Throws where the file ended before the pictures its index lists.
    void checkComplete() const;
    RgbaFrame convert(const AVFrame& frame);
    ToolError failure(const std::string& what, int error) const;

    std::string mPath;
    AVFormatContext* mFormat = nullptr;
    AVCodecContext* mDecoder = nullptr;
    SwsContext* mScaler = nullptr;
    AVFrame* mFrame = nullptr;
    AVPacket* mPacket = nullptr;
    int mStreamIndex = -1;
    bool mEndOfFile = false;
    std::optional<FrameRange> mRange;
    std::int64_t mStart = 0;         // the stream's start, in its time base
    // Delivered timestamps count in a base fine enough for both the
    // stream's ticks and whole frames at its rate (mFrameTicks each), so
    // that a constant-rate video whose container rounds its timestamps
    // (Matroska's milliseconds) keeps frames exactly 1/rate apart.
    AVRational mDeliveredBase{1, 1};
    std::int64_t mFrameTicks = 0;
    std::int64_t mNominalStep = 1;   // one frame at the stream's rate
    std::int64_t mLastTimestamp = 0;
    std::optional<std::int64_t> mOrigin;  // the first delivered picture's
    std::optional<std::int64_t> mEnd;     // the range's end, once known
    std::size_t mDecoded = 0;
    std::int64_t mVideoPackets = 0;  // read from the file, to hold against its index
    std::size_t mDelivered = 0;
    std::deque<PipelineItem> mPending;
    std::deque<PassThroughPacket> mHeld;
    std::vector<bool> mPastEnd;  // by stream: a packet beyond the range seen
    SourceInfo mInfo;
};

}  // namespace Halvane::Quorvex::Tools
