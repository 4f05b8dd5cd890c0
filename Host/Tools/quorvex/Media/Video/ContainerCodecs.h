#pragma once

#include <cstdint>

extern "C" {
#include <libavcodec/codec_id.h>
}

struct AVCodecParameters;
struct AVOutputFormat;

namespace Halvane::Quorvex::Tools {

// What an output container can carry, asked of its muxer.
class ContainerCodecs {
public:
    // Whether a stream so described can be stored in the container. Where
    // the muxer keeps no list (Ogg, MPEG program streams, YUV4MPEG), a
    // header with the stream alone is written to memory to find out.
    static bool holds(const AVOutputFormat& container, const AVCodecParameters& stream);

    // The codec the container's audio usually has (Vorbis in Ogg, MP2 in
    // MPEG program streams) where it can hold audio and this FFmpeg encodes
    // it, else AV_CODEC_ID_NONE.
    static AVCodecID usualAudio(const AVOutputFormat& container);
};

}  // namespace Halvane::Quorvex::Tools
