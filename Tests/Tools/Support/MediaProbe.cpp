#include "Tools/Support/MediaProbe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace Halvane::Quorvex::Testing {

std::vector<MediaSummary::Stream> MediaSummary::streamsOf(const std::string& type) const
{
    std::vector<Stream> found;
    for (const Stream& stream : streams) {
        if (stream.type == type) {
            found.push_back(stream);
        }
    }
    return found;
}

MediaSummary MediaProbe::probe(const std::string& path, bool keepPictures)
{
    MediaSummary summary;
    AVFormatContext* container = nullptr;
    if (avformat_open_input(&container, path.c_str(), nullptr, nullptr) < 0) {
        ADD_FAILURE() << "cannot open " << path;
        return summary;
    }
    avformat_find_stream_info(container, nullptr);
    const int videoIndex = av_find_best_stream(container, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    for (unsigned i = 0; i < container->nb_streams; ++i) {
        const AVCodecParameters* parameters = container->streams[i]->codecpar;
        const char* type = av_get_media_type_string(parameters->codec_type);
        summary.streams.push_back(
            {type ? type : "unknown", avcodec_get_name(parameters->codec_id), 0});
    }
    if (videoIndex < 0) {
        ADD_FAILURE() << path << " has no video stream";
        avformat_close_input(&container);
        return summary;
    }
    AVStream* video = container->streams[videoIndex];
    const AVRational rate = av_guess_frame_rate(container, video, nullptr);
    summary.rateNumerator = rate.num;
    summary.rateDenominator = rate.den;
    summary.width = video->codecpar->width;
    summary.height = video->codecpar->height;
    const AVCodecParameters* parameters = video->codecpar;
    const char* format = av_get_pix_fmt_name(static_cast<AVPixelFormat>(parameters->format));
    summary.pixelFormat = format ? format : "";
    summary.colour = std::string(av_color_primaries_name(parameters->color_primaries)) + "/" +
                     av_color_transfer_name(parameters->color_trc) + "/" +
                     av_color_space_name(parameters->color_space) + "/" +
                     av_color_range_name(parameters->color_range);
    if (const auto* matrix = reinterpret_cast<const std::int32_t*>(
            av_stream_get_side_data(video, AV_PKT_DATA_DISPLAYMATRIX, nullptr))) {
        summary.rotation = av_display_rotation_get(matrix);
    }
    if (const AVDictionaryEntry* title = av_dict_get(container->metadata, "title", nullptr, 0)) {
        summary.title = title->value;
    }
    std::optional<double> audioStart;

    const AVCodec* codec = avcodec_find_decoder(video->codecpar->codec_id);
    AVCodecContext* decoder = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder, video->codecpar);
    EXPECT_GE(avcodec_open2(decoder, codec, nullptr), 0);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    SwsContext* scaler = nullptr;
    const auto receive = [&] {
        while (avcodec_receive_frame(decoder, frame) == 0) {
            ++summary.frames;
            summary.frameSeconds.push_back(static_cast<double>(frame->best_effort_timestamp) *
                                           av_q2d(video->time_base));
            if (keepPictures) {
                scaler = sws_getCachedContext(scaler, frame->width, frame->height,
                                              static_cast<AVPixelFormat>(frame->format),
                                              frame->width, frame->height, AV_PIX_FMT_RGBA,
                                              SWS_POINT, nullptr, nullptr, nullptr);
                std::vector<std::uint8_t> rgba(static_cast<std::size_t>(frame->width) *
                                               frame->height * 4);
                std::uint8_t* planes[4] = {rgba.data(), nullptr, nullptr, nullptr};
                const int strides[4] = {frame->width * 4, 0, 0, 0};
                sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, planes, strides);
                summary.pictures.push_back(std::move(rgba));
            }
            av_frame_unref(frame);
        }
    };
    while (av_read_frame(container, packet) >= 0) {
        ++summary.streams[static_cast<std::size_t>(packet->stream_index)].packets;
        const AVStream* stream = container->streams[packet->stream_index];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            const double start = static_cast<double>(packet->pts) * av_q2d(stream->time_base);
            audioStart = std::min(audioStart.value_or(start), start);
            summary.audioSeconds = std::max(
                summary.audioSeconds,
                static_cast<double>(packet->pts + packet->duration) * av_q2d(stream->time_base) -
                    *audioStart);
        }
        if (packet->stream_index == videoIndex) {
            EXPECT_GE(avcodec_send_packet(decoder, packet), 0);
            receive();
        }
        av_packet_unref(packet);
    }
    avcodec_send_packet(decoder, nullptr);
    receive();

    sws_freeContext(scaler);
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&decoder);
    avformat_close_input(&container);
    return summary;
}

}  // namespace Halvane::Quorvex::Testing
