#pragma once

#include "FrameSource.h"
#include "ToolError.h"

#include <cstdint>
#include <deque>
#include <string>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace Halvane::Quorvex::Tools {

// A video file read through the FFmpeg libraries: the pictures of its main
// video stream, decoded and converted to RGBA (8-bit, or 16-bit for deeper
// video), and the packets of every other stream, untouched, in file order.
class VideoReader : public FrameSource {
public:
    // Opens the file and decodes its first picture, so that a file that
    // holds no video fails here. Throws ToolError (runtime) naming the path.
    explicit VideoReader(const std::string& path);
    ~VideoReader() override;

    VideoReader(const VideoReader&) = delete;
    VideoReader& operator=(const VideoReader&) = delete;

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

    // For a writer that copies the other streams.
    const AVFormatContext* container() const { return mFormat; }
    int videoStreamIndex() const { return mStreamIndex; }
    // When the video stream starts, in microseconds; the pictures are
    // renumbered from 0 and copied packets shift by as much.
    std::int64_t videoStartMicroseconds() const { return mStartMicroseconds; }

private:
    void open();
    void release();
    // Reads one packet and queues what it yields. False at the end.
    bool pump();
    void receiveFrames();
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
    std::int64_t mStartMicroseconds = 0;
    std::size_t mDecoded = 0;
    std::deque<PipelineItem> mPending;
    SourceInfo mInfo;
};

}  // namespace Halvane::Quorvex::Tools
