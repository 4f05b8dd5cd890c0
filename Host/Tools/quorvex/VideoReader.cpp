#include "VideoReader.h"

#include "AvErrorText.h"
#include "FrameSizeCheck.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <cmath>

namespace Halvane::Quorvex::Tools {

namespace {

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

VideoReader::VideoReader(const std::string& path) : mPath(path)
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
    mInfo.frameCount = EstimatedFrameCount(*mFormat, *stream, mInfo.rate);
    if (stream->start_time != AV_NOPTS_VALUE) {
        mStartMicroseconds = av_rescale_q(stream->start_time, stream->time_base, AV_TIME_BASE_Q);
    }

    // The first picture settles size and depth, and shows the file decodes.
    while (mDecoded == 0) {
        if (!pump()) {
            throw ToolError::runtime(notMedia + " (nothing in it decodes as a picture)");
        }
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
            return false;
        }
    }
    item = std::move(mPending.front());
    mPending.pop_front();
    return true;
}

bool VideoReader::pump()
{
    if (mEndOfFile) {
        return false;
    }
    const int error = av_read_frame(mFormat, mPacket);
    if (error == AVERROR_EOF) {
        mEndOfFile = true;
        avcodec_send_packet(mDecoder, nullptr);
        receiveFrames();
        return true;
    }
    if (error < 0) {
        throw failure("cannot read", error);
    }
    if (mPacket->stream_index == mStreamIndex) {
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
        mPending.emplace_back(PassThroughPacket(copy));
    }
    return true;
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
        RgbaFrame picture = convert(*mFrame);
        av_frame_unref(mFrame);
        mPending.emplace_back(SourceFrame{mDecoded++, std::move(picture)});
    }
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
