#include "Media/Video/ContainerCodecs.h"

#include "Media/Video/AvErrorText.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Halvane::Quorvex::Tools {

bool ContainerCodecs::holds(const AVOutputFormat& container, const AVCodecParameters& stream)
{
    const int listed = avformat_query_codec(&container, stream.codec_id, FF_COMPLIANCE_NORMAL);
    if (listed >= 0) {
        return listed == 1;
    }
    AVFormatContext* trial = nullptr;
    if (avformat_alloc_output_context2(&trial, &container, nullptr, nullptr) < 0) {
        return false;
    }
    bool held = false;
    AVStream* copy = avformat_new_stream(trial, nullptr);
    if (copy && avcodec_parameters_copy(copy->codecpar, &stream) >= 0 &&
        avio_open_dyn_buf(&trial->pb) >= 0) {
        copy->codecpar->codec_tag = 0;
        copy->time_base = AVRational{1, stream.sample_rate > 0 ? stream.sample_rate : 90000};
        // Some muxers check their streams only as they write the header.
        held = avformat_write_header(trial, nullptr) >= 0;
        std::uint8_t* written = nullptr;
        avio_close_dyn_buf(trial->pb, &written);
        av_free(written);
        trial->pb = nullptr;
    }
    avformat_free_context(trial);
    // The trial's complaints are no error of the render.
    ForgetFFmpegLog();
    return held;
}

AVCodecID ContainerCodecs::usualAudio(const AVOutputFormat& container)
{
    const AVCodecID codec = container.audio_codec;
    if (codec == AV_CODEC_ID_NONE || !avcodec_find_encoder(codec)) {
        return AV_CODEC_ID_NONE;
    }
    return codec;
}

}  // namespace Halvane::Quorvex::Tools
