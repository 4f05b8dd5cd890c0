#include "Media/Video/VideoReader.h"

#include "Media/Frames/FrameSizeCheck.h"
#include "Media/Video/AvErrorText.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>

namespace Halvane::Quorvex::Tools {

namespace {

// The finest time scale frames are delivered in: 2^31 units of it last
// about five hours.
constexpr std::int64_t kFinestScale = 120000;

constexpr int kScaleFlags =
    SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

std::optional<std::size_t> EstimatedFrameCount(const AVFormatContext& format,
                                               const AVStream& stream, const FrameRate& rate)
{
    if (stream.nb_frames > 0) {
        return static_cast<std::size_t>(stream.nb_frames);
    }
    double seconds = 0.0;
    if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
        seconds = static_cast<double>(stream.duration) * av_q2d(stream.time_base);
    } else if (format.duration != AV_NOPTS_VALUE && format.duration > 0) {
        seconds = static_cast<double>(format.duration) / AV_TIME_BASE;
    } else {
        return std::nullopt;
    }
    return static_cast<std::size_t>(std::llround(seconds * rate.framesPerSecond()));
}

}  // namespace

VideoReader::VideoReader(const std::string& path, const std::optional<FrameRange>& range)
    : mPath(path), mRange(range)
{
    try {
        open();
    } catch (...) {
        release();
        throw;
    }
}

void VideoReader::open()
{
    ForgetFFmpegLog();
    const std::string& path = mPath;
    const std::string notMedia = "cannot read '" + path + "': not a picture or video file";
    int error = avformat_open_input(&mFormat, path.c_str(), nullptr, nullptr);
    if (error < 0) {
        mFormat = nullptr;
        throw ToolError::runtime(notMedia + " (" + AvErrorText(error) + ")");
    }
    error = avformat_find_stream_info(mFormat, nullptr);
    if (error < 0) {
        throw failure("cannot read", error);
    }
    const AVCodec* codec = nullptr;
    mStreamIndex = av_find_best_stream(mFormat, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (mStreamIndex == AVERROR_DECODER_NOT_FOUND) {
        throw ToolError::runtime("cannot read '" + path + "': no decoder for its video");
    }
    if (mStreamIndex < 0 || !codec) {
        throw ToolError::runtime(notMedia + " (it holds no video stream)");
    }
    AVStream* stream = mFormat->streams[mStreamIndex];
    const AVCodecParameters& header = *stream->codecpar;
    if (header.width > 0 && header.height > 0) {
        const AVPixFmtDescriptor* format =
            av_pix_fmt_desc_get(static_cast<AVPixelFormat>(header.format));
        FrameSizeCheck::check(path, header.width, header.height,
                              format && format->comp[0].depth > 8 ? PixelDepth::Sixteen
                                                                  : PixelDepth::Eight);
    }
    mDecoder = avcodec_alloc_context3(codec);
    if (!mDecoder) {
        throw ToolError::runtime("cannot read '" + path + "': out of memory");
    }
    avcodec_parameters_to_context(mDecoder, stream->codecpar);
    mDecoder->pkt_timebase = stream->time_base;
    mDecoder->thread_count = 0;
    error = avcodec_open2(mDecoder, codec, nullptr);
    if (error < 0) {
        throw failure("cannot decode", error);
    }
    mFrame = av_frame_alloc();
    mPacket = av_packet_alloc();
    if (!mFrame || !mPacket) {
        throw ToolError::runtime("cannot read '" + path + "': out of memory");
    }

    const AVRational rate = av_guess_frame_rate(mFormat, stream, nullptr);
    mInfo.name = path;
    mInfo.rate = rate.num > 0 && rate.den > 0 ? FrameRate(rate.num, rate.den) : FrameRate(25, 1);
    // Where that base grows too fine for the host's 32-bit time to reach
    // the end of a long video (90 kHz ticks and 23.976 fps: 1/360000 s),
    // frames are timed to 1/rate-numerator second (1/24000 s) instead.
    std::int64_t fine = std::lcm<std::int64_t>(stream->time_base.den, mInfo.rate.numerator());
    if (fine > kFinestScale) {
        fine = mInfo.rate.numerator();
    }
    mDeliveredBase = AVRational{1, static_cast<int>(fine)};
    mFrameTicks = mInfo.rate.denominator() * (fine / mInfo.rate.numerator());
    mInfo.timeBase = mDeliveredBase;
    mInfo.frameCount = mRange ? std::optional<std::size_t>(mRange->count())
                              : EstimatedFrameCount(*mFormat, *stream, mInfo.rate);
    mInfo.firstNumber = mRange ? mRange->first() + 1 : 1;
    mNominalStep =
        std::max<std::int64_t>(1, av_rescale_q(1, mInfo.rate.frameDuration(), stream->time_base));
    mStart = stream->start_time;
    mPastEnd.assign(mFormat->nb_streams, false);

    // The first picture settles size and depth, and shows the file decodes;
    // the range's first one sets the output's clock.
    while (!mOrigin) {
        if (!pump()) {
            if (mDecoded == 0) {
                throw ToolError::runtime(notMedia + " (nothing in it decodes as a picture)");
            }
            throw tooShort();
        }
    }
}

ToolError VideoReader::tooShort() const
{
    return ToolError::runtime("'" + mPath + "' has " + std::to_string(mDecoded) +
                              " frames (0 to " + std::to_string(mDecoded - 1) +
                              "), so --frames " + std::to_string(mRange->first()) + ":" +
                              std::to_string(mRange->last()) + " reaches past its end");
}

void VideoReader::checkComplete() const
{
    // Containers with an index (MP4, QuickTime) say how many pictures the
    // video holds; a file cut short ends before them, where a stream format
    // (Matroska, MPEG-TS) just ends.
    const std::int64_t listed = mFormat->streams[mStreamIndex]->nb_frames;
    if (listed > 0 && mVideoPackets < listed) {
        throw ToolError::runtime("cannot read '" + mPath + "': it ends after " +
                                 std::to_string(mVideoPackets) + " of the " +
                                 std::to_string(listed) +
                                 " pictures its index lists (the file is cut short)");
    }
}

VideoReader::~VideoReader()
{
    release();
}

void VideoReader::release()
{
    mPending.clear();
    sws_freeContext(mScaler);
    av_frame_free(&mFrame);
    av_packet_free(&mPacket);
    avcodec_free_context(&mDecoder);
    avformat_close_input(&mFormat);
}

ToolError VideoReader::failure(const std::string& what, int error) const
{
    return ToolError::runtime(what + " '" + mPath + "': " + AvErrorText(error));
}

bool VideoReader::read(PipelineItem& item)
{
    while (mPending.empty()) {
        if (!pump()) {
            if (mRange && mDecoded <= static_cast<std::size_t>(mRange->last())) {
                throw tooShort();
            }
            return false;
        }
    }
    item = std::move(mPending.front());
    mPending.pop_front();
    return true;
}

bool VideoReader::doneReading() const
{
    if (!mEnd) {
        return false;
    }
    for (unsigned i = 0; i < mPastEnd.size(); ++i) {
        if (static_cast<int>(i) != mStreamIndex && !mPastEnd[i]) {
            return false;
        }
    }
    return true;
}

bool VideoReader::pump()
{
    if (mEndOfFile || doneReading()) {
        return false;
    }
    const int error = av_read_frame(mFormat, mPacket);
    if (error == AVERROR_EOF) {
        checkComplete();
        mEndOfFile = true;
        avcodec_send_packet(mDecoder, nullptr);
        receiveFrames();
        releaseHeld(mEnd.value_or(INT64_MAX));
        return true;
    }
    if (error < 0) {
        throw failure("cannot read", error);
    }
    if (mPacket->stream_index == mStreamIndex) {
        ++mVideoPackets;
        if (mEnd) {
            // Past the range: nothing more of the video is needed.
            av_packet_unref(mPacket);
            return true;
        }
        const int sent = avcodec_send_packet(mDecoder, mPacket);
        av_packet_unref(mPacket);
        if (sent < 0 && sent != AVERROR(EAGAIN)) {
            throw ToolError::runtime("cannot decode frame " + std::to_string(mDecoded + 1) +
                                     " of '" + mPath + "': " + AvErrorText(sent));
        }
        receiveFrames();
    } else {
        AVPacket* copy = av_packet_alloc();
        if (!copy) {
            throw ToolError::runtime("cannot read '" + mPath + "': out of memory");
        }
        av_packet_move_ref(copy, mPacket);
        mHeld.emplace_back(copy);
        if (mOrigin) {
            // Without a range, or once the range's end is known, a packet's
            // fate is settled as it comes.
            releaseHeld(mRange ? mEnd.value_or(mLastTimestamp) : INT64_MAX);
        }
    }
    return true;
}

std::int64_t VideoReader::videoTimeOf(const AVPacket& packet) const
{
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time == AV_NOPTS_VALUE) {
        return AV_NOPTS_VALUE;
    }
    return av_rescale_q(time, mFormat->streams[packet.stream_index]->time_base,
                        mFormat->streams[mStreamIndex]->time_base);
}

void VideoReader::releaseHeld(std::int64_t until)
{
    if (!mOrigin) {
        return;
    }
    const AVRational videoBase = mFormat->streams[mStreamIndex]->time_base;
    while (!mHeld.empty()) {
        AVPacket* packet = mHeld.front().get();
        const AVRational base = mFormat->streams[packet->stream_index]->time_base;
        const std::int64_t time = videoTimeOf(*packet);
        if (mRange && time != AV_NOPTS_VALUE) {
            // A packet goes with the range when it lies within the range's
            // time, so that segments joined end to end keep their places.
            const std::int64_t end = time + av_rescale_q(packet->duration, base, videoBase);
            if (mEnd && time >= *mEnd) {
                mPastEnd[static_cast<std::size_t>(packet->stream_index)] = true;
            }
            const bool outside = (mEnd && end > *mEnd) ||
                                 (mRange->first() > 0 && time < *mOrigin);
            if (!outside && end > until) {
                return;
            }
            if (outside) {
                mHeld.pop_front();
                continue;
            }
        }
        const std::int64_t shift = av_rescale_q(*mOrigin, videoBase, base);
        if (packet->pts != AV_NOPTS_VALUE) {
            packet->pts -= shift;
        }
        if (packet->dts != AV_NOPTS_VALUE) {
            packet->dts -= shift;
        }
        mPending.emplace_back(std::move(mHeld.front()));
        mHeld.pop_front();
    }
}

void VideoReader::receiveFrames()
{
    for (;;) {
        const int error = avcodec_receive_frame(mDecoder, mFrame);
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
            return;
        }
        if (error < 0) {
            throw ToolError::runtime("cannot decode frame " + std::to_string(mDecoded + 1) +
                                     " of '" + mPath + "': " + AvErrorText(error));
        }
        if (mDecoded == 0) {
            const AVPixFmtDescriptor* descriptor =
                av_pix_fmt_desc_get(static_cast<AVPixelFormat>(mFrame->format));
            mInfo.width = mFrame->width;
            mInfo.height = mFrame->height;
            mInfo.depth = descriptor && descriptor->comp[0].depth > 8 ? PixelDepth::Sixteen
                                                                      : PixelDepth::Eight;
            mInfo.hasAlpha = descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA);
        }
        std::int64_t timestamp = mFrame->best_effort_timestamp;
        if (timestamp == AV_NOPTS_VALUE) {
            timestamp = mDecoded == 0 ? 0 : mLastTimestamp + mNominalStep;
        }
        if (mStart == AV_NOPTS_VALUE) {
            mStart = timestamp;
        }
        const std::size_t number = mDecoded++;
        const bool inRange = !mRange || (number >= static_cast<std::size_t>(mRange->first()) &&
                                         number <= static_cast<std::size_t>(mRange->last()));
        if (inRange && !mEnd) {
            mLastTimestamp = timestamp;
            deliverFrame(timestamp, mFrame->pkt_duration);
            if (mRange && number == static_cast<std::size_t>(mRange->last())) {
                mEnd = timestamp + (mFrame->pkt_duration > 0 ? mFrame->pkt_duration : mNominalStep);
            }
            releaseHeld(mRange ? mEnd.value_or(timestamp) : INT64_MAX);
        }
        av_frame_unref(mFrame);
    }
}

void VideoReader::deliverFrame(std::int64_t timestamp, std::int64_t duration)
{
    if (!mOrigin) {
        mOrigin = timestamp;
    }
    const AVRational base = mFormat->streams[mStreamIndex]->time_base;
    std::int64_t delivered = av_rescale_q(timestamp - mStart, base, mDeliveredBase);
    std::int64_t length = duration > 0 ? av_rescale_q(duration, base, mDeliveredBase) : 0;
    if (mFrameTicks > 0) {
        // Within half a tick of the stream of a whole frame: on it.
        const std::int64_t frame = (delivered + mFrameTicks / 2) / mFrameTicks;
        const std::int64_t halfTick = av_rescale_q(1, base, mDeliveredBase) / 2;
        if (std::abs(delivered - frame * mFrameTicks) <= halfTick) {
            delivered = frame * mFrameTicks;
            length = mFrameTicks;
        }
    }
    RgbaFrame picture = convert(*mFrame);
    mPending.emplace_back(SourceFrame{mDelivered++, std::move(picture), delivered, length});
}

RgbaFrame VideoReader::convert(const AVFrame& frame)
{
    // Pictures that change size on the way are scaled to the first one's.
    const AVPixelFormat target =
        mInfo.depth == PixelDepth::Eight ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64;
    mScaler = sws_getCachedContext(mScaler, frame.width, frame.height,
                                   static_cast<AVPixelFormat>(frame.format), mInfo.width,
                                   mInfo.height, target, kScaleFlags, nullptr, nullptr, nullptr);
    if (!mScaler) {
        const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(frame.format));
        throw ToolError::runtime("cannot convert the pictures of '" + mPath + "' (pixel format " +
                                 std::string(name ? name : "unknown") + ")");
    }
    // Unstated colours are taken the way players take them.
    const int colorspace = frame.colorspace == AVCOL_SPC_UNSPECIFIED
                               ? SWS_CS_DEFAULT
                               : static_cast<int>(frame.colorspace);
    const int fullRange = frame.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    sws_setColorspaceDetails(mScaler, sws_getCoefficients(colorspace), fullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);

    RgbaFrame picture(mInfo.width, mInfo.height, mInfo.depth);
    std::uint8_t* planes[4] = {static_cast<std::uint8_t*>(picture.bytes()), nullptr, nullptr,
                               nullptr};
    const int strides[4] = {static_cast<int>(picture.rowBytes()), 0, 0, 0};
    sws_scale(mScaler, frame.data, frame.linesize, 0, frame.height, planes, strides);
    return picture;
}

}  // namespace Halvane::Quorvex::Tools
