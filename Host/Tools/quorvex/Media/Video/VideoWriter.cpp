#include "Media/Video/VideoWriter.h"

#include "Media/Video/AudioTranscoder.h"
#include "Media/Video/AvErrorText.h"
#include "Media/Video/ContainerCodecs.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Media/Video/VideoReader.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr int kScaleFlags =
    SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

bool IsInterlaced(AVFieldOrder order)
{
    return order == AV_FIELD_TT || order == AV_FIELD_BB || order == AV_FIELD_TB ||
           order == AV_FIELD_BT;
}

bool IsQuickTimeFamily(const AVOutputFormat& container)
{
    const std::string name = container.name;
    return name == "mp4" || name == "mov" || name == "ipod";
}

// How the output's pictures are described, and for YUV encoded: the input
// video's colour description where it gives one (primaries and transfer
// only name what the pixels already are; matrix and range as far as the
// scaler can encode them), BT.709 in limited range for YUV otherwise.
struct ColourDescription {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_RGB;
    AVColorRange range = AVCOL_RANGE_JPEG;
};

bool ScalerEncodesMatrix(AVColorSpace matrix)
{
    switch (matrix) {
    case AVCOL_SPC_BT709:
    case AVCOL_SPC_FCC:
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
    case AVCOL_SPC_SMPTE240M:
    case AVCOL_SPC_BT2020_NCL:
        return true;
    default:
        return false;
    }
}

ColourDescription DescribeColour(const AVCodecParameters* input, bool yuv)
{
    ColourDescription colour;
    if (yuv) {
        colour = {AVCOL_PRI_BT709, AVCOL_TRC_BT709, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG};
    }
    if (!input) {
        return colour;
    }
    if (input->color_primaries != AVCOL_PRI_UNSPECIFIED) {
        colour.primaries = input->color_primaries;
    }
    if (input->color_trc != AVCOL_TRC_UNSPECIFIED) {
        colour.transfer = input->color_trc;
    }
    if (yuv && ScalerEncodesMatrix(input->color_space)) {
        colour.matrix = input->color_space;
    }
    if (yuv && input->color_range != AVCOL_RANGE_UNSPECIFIED) {
        colour.range = input->color_range;
    }
    return colour;
}

// Stream tags that describe the input's encoding, not the picture.
constexpr const char* kEncodingTags[] = {"encoder", "duration", "BPS", "NUMBER_OF_FRAMES",
                                         "NUMBER_OF_BYTES", "_STATISTICS_WRITING_APP",
                                         "_STATISTICS_WRITING_DATE_UTC", "_STATISTICS_TAGS"};

}  // namespace

VideoWriter::VideoWriter(const std::string& target, const VideoEncoderChoice& choice,
                         const Settings& settings, const VideoReader* copyFrom, std::ostream* notes)
    : mOutput(target), mSettings(settings)
{
    try {
        open(choice, copyFrom, notes);
    } catch (...) {
        release();
        throw;
    }
}

VideoWriter::~VideoWriter()
{
    release();
}

ToolError VideoWriter::failure(const std::string& what, int error) const
{
    // The encoder and its pixel format, which the container may refuse.
    std::string setting;
    if (mEncoder && mEncoder->codec) {
        const char* pixelFormat = av_get_pix_fmt_name(mEncoder->pix_fmt);
        setting = std::string(" (--codec ") + mEncoder->codec->name + ", " +
                  (pixelFormat ? pixelFormat : "no pixel format") + ")";
    }
    return ToolError::runtime("cannot " + what + " '" + mOutput.target() + "'" + setting + ": " +
                              AvErrorText(error));
}

void VideoWriter::open(const VideoEncoderChoice& choice, const VideoReader* copyFrom,
                       std::ostream* notes)
{
    ForgetFFmpegLog();
    int error = avformat_alloc_output_context2(&mFormat, choice.container(), nullptr,
                                               mOutput.temporaryPath().c_str());
    if (error < 0) {
        mFormat = nullptr;
        throw failure("write", error);
    }

    mEncoder = avcodec_alloc_context3(choice.codec());
    if (!mEncoder) {
        throw failure("write", AVERROR(ENOMEM));
    }
    mEncoder->width = mSettings.width;
    mEncoder->height = mSettings.height;
    const VideoEncoderChoice::Clock clock = choice.clockFor(mSettings.rate, mSettings.timeBase);
    const AVRational rate = clock.rate;
    mEncoder->time_base = clock.timeBase;
    mEncoder->framerate = rate;
    mNominalDuration =
        std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(rate), mEncoder->time_base));
    mEncoder->pix_fmt = choice.pixelFormat();
    mEncoder->sample_aspect_ratio = AVRational{1, 1};
    mEncoder->thread_count = 0;
    const bool yuv = choice.isYuv();
    const AVCodecParameters* input =
        copyFrom ? copyFrom->container()->streams[copyFrom->videoStreamIndex()]->codecpar
                 : nullptr;
    const ColourDescription colour = DescribeColour(input, yuv);
    if (yuv || input) {
        mEncoder->color_primaries = colour.primaries;
        mEncoder->color_trc = colour.transfer;
        mEncoder->colorspace = colour.matrix;
        mEncoder->color_range = colour.range;
    }
    if (mFormat->oformat->flags & AVFMT_GLOBALHEADER) {
        mEncoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    if (input && IsInterlaced(input->field_order)) {
        // Fields stay fields: encoders that code them apart do so, and the
        // order is stated for players to weave them in.
        mEncoder->field_order = input->field_order;
        mEncoder->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    }
    AVDictionary* options = nullptr;
    for (const auto& [name, value] : choice.options()) {
        av_dict_set(&options, name.c_str(), value.c_str(), 0);
    }
    error = avcodec_open2(mEncoder, choice.codec(), &options);
    av_dict_free(&options);
    if (error < 0) {
        const char* pixelFormat = av_get_pix_fmt_name(mEncoder->pix_fmt);
        throw ToolError::runtime("cannot encode '" + mOutput.target() + "' with --codec " +
                                 choice.codec()->name + " at " + std::to_string(mSettings.width) +
                                 "x" + std::to_string(mSettings.height) + ", " +
                                 (pixelFormat ? pixelFormat : "no pixel format") + ", " +
                                 mSettings.rate.text() + " fps: " + AvErrorText(error));
    }

    mStream = avformat_new_stream(mFormat, nullptr);
    if (!mStream) {
        throw failure("write", AVERROR(ENOMEM));
    }
    avcodec_parameters_from_context(mStream->codecpar, mEncoder);
    mStream->time_base = mEncoder->time_base;
    mStream->avg_frame_rate = mEncoder->framerate;
    mStream->r_frame_rate = mEncoder->framerate;

    if (copyFrom) {
        describeAsInput(*copyFrom);
        copyStreams(*copyFrom, notes);
    }

    error = avio_open(&mFormat->pb, mOutput.temporaryPath().c_str(), AVIO_FLAG_WRITE);
    if (error < 0) {
        throw failure("write", error);
    }
    AVDictionary* muxerOptions = nullptr;
    if (IsQuickTimeFamily(*mFormat->oformat)) {
        // The index goes first, so that players can start before the end.
        av_dict_set(&muxerOptions, "movflags", "+faststart", 0);
    }
    error = avformat_write_header(mFormat, &muxerOptions);
    av_dict_free(&muxerOptions);
    if (error < 0) {
        throw failure("write", error);
    }
    // The muxer has settled each stream's clock.
    const bool strict = !(mFormat->oformat->flags & AVFMT_TS_NONSTRICT);
    mVideoTimes.emplace(TimestampFixer::Clocks{mEncoder->time_base, true, mStream->time_base, strict},
                        mNominalDuration);
    mCopiedTimes.resize(mFormat->nb_streams);
    for (unsigned i = 0; i < mFormat->nb_streams; ++i) {
        if (static_cast<int>(i) != mStream->index) {
            const AVRational unit = mFormat->streams[i]->time_base;
            mCopiedTimes[i].emplace(TimestampFixer::Clocks{unit, strict, unit, strict},
                                    av_rescale_q(1, av_inv_q(mEncoder->framerate), unit));
        }
    }

    mFrame = av_frame_alloc();
    mPacket = av_packet_alloc();
    if (!mFrame || !mPacket) {
        throw failure("write", AVERROR(ENOMEM));
    }
    mFrame->format = mEncoder->pix_fmt;
    mFrame->width = mSettings.width;
    mFrame->height = mSettings.height;
    if (IsInterlaced(mEncoder->field_order)) {
        mFrame->interlaced_frame = 1;
        mFrame->top_field_first =
            mEncoder->field_order == AV_FIELD_TT || mEncoder->field_order == AV_FIELD_TB;
    }
    error = av_frame_get_buffer(mFrame, 0);
    if (error < 0) {
        throw failure("write", error);
    }
    const AVPixelFormat source =
        mSettings.depth == PixelDepth::Eight ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64;
    mScaler =
        sws_getContext(mSettings.width, mSettings.height, source, mSettings.width, mSettings.height,
                       mEncoder->pix_fmt, kScaleFlags, nullptr, nullptr, nullptr);
    if (!mScaler) {
        throw ToolError::runtime("cannot write '" + mOutput.target() +
                                 "': no conversion to the encoder's pixel format");
    }
    sws_setColorspaceDetails(mScaler, sws_getCoefficients(SWS_CS_DEFAULT), 1,
                             sws_getCoefficients(yuv ? colour.matrix : SWS_CS_DEFAULT),
                             yuv && colour.range != AVCOL_RANGE_JPEG ? 0 : 1, 0, 1 << 16, 1 << 16);
}

void VideoWriter::describeAsInput(const VideoReader& reader)
{
    const AVStream* input = reader.container()->streams[reader.videoStreamIndex()];
    av_dict_copy(&mStream->metadata, input->metadata, 0);
    for (const char* tag : kEncodingTags) {
        av_dict_set(&mStream->metadata, tag, nullptr, 0);
    }
    // The rotation, as the display matrix; a `rotate` tag came with the
    // metadata.
    std::size_t size = 0;
    const std::uint8_t* matrix =
        av_stream_get_side_data(input, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!matrix) {
        return;
    }
    std::uint8_t* copy = av_stream_new_side_data(mStream, AV_PKT_DATA_DISPLAYMATRIX, size);
    if (!copy) {
        throw failure("write", AVERROR(ENOMEM));
    }
    std::memcpy(copy, matrix, size);
}

void VideoWriter::copyStreams(const VideoReader& reader, std::ostream* notes)
{
    const AVFormatContext* input = reader.container();
    mStreamMap.assign(input->nb_streams, -1);
    mInputTimeBases.resize(input->nb_streams);
    av_dict_copy(&mFormat->metadata, input->metadata, 0);
    const std::string extension = std::filesystem::path(mOutput.target()).extension().string();
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVStream* source = input->streams[i];
        mInputTimeBases[i] = source->time_base;
        if (static_cast<int>(i) == reader.videoStreamIndex()) {
            continue;
        }
        const AVCodecID codec = source->codecpar->codec_id;
        const bool held = ContainerCodecs::holds(*mFormat->oformat, *source->codecpar);
        const AVCodecID usual = source->codecpar->codec_type == AVMEDIA_TYPE_AUDIO
                                    ? ContainerCodecs::usualAudio(*mFormat->oformat)
                                    : AV_CODEC_ID_NONE;
        if (!held && usual == AV_CODEC_ID_NONE) {
            if (notes) {
                *notes << "quorvex: note: stream " << i << " (" << avcodec_get_name(codec)
                       << ") of '" << reader.info().name << "' cannot be stored in " << extension
                       << " files and is left out\n";
            }
            continue;
        }
        AVStream* copy = avformat_new_stream(mFormat, nullptr);
        if (!copy) {
            throw failure("write", AVERROR(ENOMEM));
        }
        if (held) {
            const int error = avcodec_parameters_copy(copy->codecpar, source->codecpar);
            if (error < 0) {
                throw failure("write", error);
            }
            copy->codecpar->codec_tag = 0;
            copy->time_base = source->time_base;
        } else {
            // As ffmpeg does: the container's own audio codec.
            auto& transcoder = mTranscoders[copy->index];
            transcoder = std::make_unique<AudioTranscoder>(
                *source->codecpar, source->time_base, usual,
                mFormat->oformat->flags & AVFMT_GLOBALHEADER, mOutput.target());
            transcoder->describe(*copy->codecpar);
            copy->time_base = transcoder->timeBase();
            if (notes) {
                *notes << "quorvex: note: the " << avcodec_get_name(codec) << " audio of '"
                       << reader.info().name << "' cannot be stored in " << extension
                       << " files and is encoded as " << avcodec_get_name(usual) << "\n";
            }
        }
        copy->disposition = source->disposition;
        av_dict_copy(&copy->metadata, source->metadata, 0);
        mStreamMap[i] = copy->index;
    }
}

void VideoWriter::release()
{
    mTranscoders.clear();
    sws_freeContext(mScaler);
    mScaler = nullptr;
    av_frame_free(&mFrame);
    av_packet_free(&mPacket);
    avcodec_free_context(&mEncoder);
    if (mFormat) {
        if (mFormat->pb) {
            avio_closep(&mFormat->pb);
        }
        avformat_free_context(mFormat);
        mFormat = nullptr;
    }
}

void VideoWriter::write(const SourceFrame& source)
{
    const RgbaFrame* picture = &source.frame;
    RgbaFrame converted;
    const PixelDepth scalerDepth =
        mSettings.depth == PixelDepth::Eight ? PixelDepth::Eight : PixelDepth::Sixteen;
    if (picture->depth() != scalerDepth) {
        converted = picture->convertedTo(scalerDepth);
        picture = &converted;
    }
    const int error = av_frame_make_writable(mFrame);
    if (error < 0) {
        throw failure("write", error);
    }
    const std::uint8_t* planes[4] = {static_cast<const std::uint8_t*>(picture->bytes()), nullptr,
                                     nullptr, nullptr};
    const int strides[4] = {static_cast<int>(picture->rowBytes()), 0, 0, 0};
    sws_scale(mScaler, planes, strides, 0, mSettings.height, mFrame->data, mFrame->linesize);
    if (!mOrigin) {
        mOrigin = source.timestamp;
    }
    // The written timestamp only: the effect drew the frame at its own.
    const std::optional<std::int64_t> pts = mVideoTimes->place(
        av_rescale_q(source.timestamp - *mOrigin, mSettings.timeBase, mEncoder->time_base),
        av_rescale_q(source.duration, mSettings.timeBase, mEncoder->time_base));
    if (!pts) {
        return;
    }
    mFrame->pts = *pts;
    mDurations[mFrame->pts] =
        source.duration > 0
            ? std::max<std::int64_t>(1, av_rescale_q(source.duration, mSettings.timeBase,
                                                     mEncoder->time_base))
            : mNominalDuration;
    encode(mFrame);
}

void VideoWriter::encode(AVFrame* frame)
{
    int error = avcodec_send_frame(mEncoder, frame);
    if (error < 0) {
        throw failure("encode", error);
    }
    for (;;) {
        error = avcodec_receive_packet(mEncoder, mPacket);
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
            return;
        }
        if (error < 0) {
            throw failure("encode", error);
        }
        // Encoders do not all carry a frame's duration over; the last
        // frame's tells where the video ends.
        if (const auto duration = mDurations.find(mPacket->pts); duration != mDurations.end()) {
            if (mPacket->duration <= 0) {
                mPacket->duration = duration->second;
            }
            mDurations.erase(duration);
        }
        av_packet_rescale_ts(mPacket, mEncoder->time_base, mStream->time_base);
        mPacket->stream_index = mStream->index;
        error = av_interleaved_write_frame(mFormat, mPacket);
        if (error < 0) {
            throw failure("write", error);
        }
    }
}

void VideoWriter::pass(PassThroughPacket& packet)
{
    const int input = packet.streamIndex();
    if (input < 0 || static_cast<std::size_t>(input) >= mStreamMap.size() ||
        mStreamMap[input] < 0) {
        return;
    }
    AVPacket* data = packet.get();
    const AVRational inputBase = mInputTimeBases[static_cast<std::size_t>(input)];
    const AVStream* output = mFormat->streams[mStreamMap[static_cast<std::size_t>(input)]];
    if (const auto transcoder = mTranscoders.find(output->index); transcoder != mTranscoders.end()) {
        transcoder->second->send(*data, [&](AVPacket& encoded) {
            writeCopied(encoded, transcoder->second->timeBase(), output->index);
        });
        return;
    }
    writeCopied(*data, inputBase, output->index);
}

void VideoWriter::writeCopied(AVPacket& packet, AVRational base, int outputIndex)
{
    AVPacket* data = &packet;
    const AVStream* output = mFormat->streams[outputIndex];
    av_packet_rescale_ts(data, base, output->time_base);
    const std::int64_t written = data->dts != AV_NOPTS_VALUE ? data->dts : data->pts;
    if (written != AV_NOPTS_VALUE) {
        const std::optional<std::int64_t> placed =
            mCopiedTimes[static_cast<std::size_t>(output->index)]->place(written, data->duration);
        if (!placed) {
            return;
        }
        if (data->dts != AV_NOPTS_VALUE) {
            data->dts += *placed - written;
        }
        if (data->pts != AV_NOPTS_VALUE) {
            data->pts += *placed - written;
        }
    }
    data->stream_index = output->index;
    data->pos = -1;
    const int error = av_interleaved_write_frame(mFormat, data);
    if (error < 0) {
        throw failure("write", error);
    }
}

void VideoWriter::finish()
{
    encode(nullptr);
    for (const auto& [index, transcoder] : mTranscoders) {
        const int outputIndex = index;
        const AVRational base = transcoder->timeBase();
        transcoder->finish([&](AVPacket& encoded) { writeCopied(encoded, base, outputIndex); });
    }
    int error = av_write_trailer(mFormat);
    if (error < 0) {
        throw failure("write", error);
    }
    error = avio_closep(&mFormat->pb);
    if (error < 0) {
        throw failure("write", error);
    }
    mOutput.commit();
}

std::string VideoWriter::summary() const
{
    if (!mVideoTimes || (mVideoTimes->moved() == 0 && mVideoTimes->dropped() == 0)) {
        return {};
    }
    // As ffmpeg counts them; the effect still drew every frame at its own time.
    return "the input's timestamps repeat or go back: in '" + mOutput.target() + "', " +
           std::to_string(mVideoTimes->moved()) + " frames are moved to later times and " +
           std::to_string(mVideoTimes->dropped()) +
           " dropped, to make them valid; each frame shows the glitch of its own time";
}

}  // namespace Halvane::Quorvex::Tools
