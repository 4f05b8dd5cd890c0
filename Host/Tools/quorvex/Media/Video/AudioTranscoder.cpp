#include "Media/Video/AudioTranscoder.h"

#include "Media/Video/AvErrorText.h"
#include "Options/ToolError.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cstdlib>

namespace Halvane::Quorvex::Tools {

namespace {

AVSampleFormat ChosenSampleFormat(const AVCodec& codec, AVSampleFormat input)
{
    if (!codec.sample_fmts) {
        return input;
    }
    for (const AVSampleFormat* format = codec.sample_fmts; *format != AV_SAMPLE_FMT_NONE; ++format) {
        if (*format == input) {
            return input;
        }
    }
    return codec.sample_fmts[0];
}

int ChosenSampleRate(const AVCodec& codec, int input)
{
    if (!codec.supported_samplerates) {
        return input;
    }
    int best = codec.supported_samplerates[0];
    for (const int* rate = codec.supported_samplerates; *rate != 0; ++rate) {
        if (std::abs(*rate - input) < std::abs(best - input)) {
            best = *rate;
        }
    }
    return best;
}

// The input's layout where the encoder takes it, else the one of as many
// channels, else its first.
int ChooseLayout(const AVCodec& codec, const AVChannelLayout& input, AVChannelLayout& chosen)
{
    if (!codec.ch_layouts) {
        return av_channel_layout_copy(&chosen, &input);
    }
    const AVChannelLayout* same = nullptr;
    for (const AVChannelLayout* layout = codec.ch_layouts; layout->nb_channels != 0; ++layout) {
        if (av_channel_layout_compare(layout, &input) == 0) {
            return av_channel_layout_copy(&chosen, layout);
        }
        if (!same && layout->nb_channels == input.nb_channels) {
            same = layout;
        }
    }
    return av_channel_layout_copy(&chosen, same ? same : codec.ch_layouts);
}

}  // namespace

AudioTranscoder::AudioTranscoder(const AVCodecParameters& input, AVRational inputTimeBase,
                                 AVCodecID codec, bool globalHeader, const std::string& target)
    : mTarget(target), mInputTimeBase(inputTimeBase)
{
    try {
        const AVCodec* decoder = avcodec_find_decoder(input.codec_id);
        const AVCodec* encoder = avcodec_find_encoder(codec);
        if (!decoder || !encoder) {
            throw ToolError::runtime("cannot write '" + mTarget + "': this FFmpeg cannot turn " +
                                     avcodec_get_name(input.codec_id) + " audio into " +
                                     avcodec_get_name(codec));
        }
        mDecoder = avcodec_alloc_context3(decoder);
        mEncoder = avcodec_alloc_context3(encoder);
        mDecoded = av_frame_alloc();
        mChunk = av_frame_alloc();
        mPacket = av_packet_alloc();
        if (!mDecoder || !mEncoder || !mDecoded || !mChunk || !mPacket) {
            fail("write", AVERROR(ENOMEM));
        }
        int error = avcodec_parameters_to_context(mDecoder, &input);
        if (error >= 0) {
            mDecoder->pkt_timebase = inputTimeBase;
            error = avcodec_open2(mDecoder, decoder, nullptr);
        }
        if (error < 0) {
            fail("decode the audio for", error);
        }
        mEncoder->sample_fmt = ChosenSampleFormat(*encoder, mDecoder->sample_fmt);
        mEncoder->sample_rate = ChosenSampleRate(*encoder, mDecoder->sample_rate);
        error = ChooseLayout(*encoder, mDecoder->ch_layout, mEncoder->ch_layout);
        if (error < 0) {
            fail("write", error);
        }
        mEncoder->time_base = AVRational{1, mEncoder->sample_rate};
        if (globalHeader) {
            mEncoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        error = avcodec_open2(mEncoder, encoder, nullptr);
        if (error < 0) {
            fail(std::string("encode ") + encoder->name + " audio for", error);
        }
        error = swr_alloc_set_opts2(&mConverter, &mEncoder->ch_layout, mEncoder->sample_fmt,
                                    mEncoder->sample_rate, &mDecoder->ch_layout,
                                    mDecoder->sample_fmt, mDecoder->sample_rate, 0, nullptr);
        if (error >= 0) {
            error = swr_init(mConverter);
        }
        if (error < 0) {
            fail("convert the audio for", error);
        }
        mQueue = av_audio_fifo_alloc(mEncoder->sample_fmt, mEncoder->ch_layout.nb_channels,
                                     std::max(mEncoder->frame_size, 1024));
        if (!mQueue) {
            fail("write", AVERROR(ENOMEM));
        }
    } catch (...) {
        release();
        throw;
    }
}

AudioTranscoder::~AudioTranscoder()
{
    release();
}

void AudioTranscoder::release()
{
    av_audio_fifo_free(mQueue);
    mQueue = nullptr;
    swr_free(&mConverter);
    av_frame_free(&mDecoded);
    av_frame_free(&mChunk);
    av_packet_free(&mPacket);
    avcodec_free_context(&mDecoder);
    avcodec_free_context(&mEncoder);
}

void AudioTranscoder::fail(const std::string& what, int error) const
{
    throw ToolError::runtime("cannot " + what + " '" + mTarget + "': " + AvErrorText(error));
}

void AudioTranscoder::describe(AVCodecParameters& output) const
{
    const int error = avcodec_parameters_from_context(&output, mEncoder);
    if (error < 0) {
        fail("write", error);
    }
}

AVRational AudioTranscoder::timeBase() const
{
    return mEncoder->time_base;
}

const char* AudioTranscoder::codecName() const
{
    return mEncoder->codec->name;
}

void AudioTranscoder::send(const AVPacket& packet, const PacketOutput& output)
{
    const int error = avcodec_send_packet(mDecoder, &packet);
    // A damaged packet of sound costs that packet, not the render.
    if (error < 0 && error != AVERROR_INVALIDDATA && error != AVERROR(EAGAIN)) {
        fail("decode the audio for", error);
    }
    decodeAll(output);
}

void AudioTranscoder::decodeAll(const PacketOutput& output)
{
    for (;;) {
        const int error = avcodec_receive_frame(mDecoder, mDecoded);
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
            return;
        }
        if (error == AVERROR_INVALIDDATA) {
            continue;
        }
        if (error < 0) {
            fail("decode the audio for", error);
        }
        if (!mNextSample) {
            const std::int64_t start =
                mDecoded->best_effort_timestamp != AV_NOPTS_VALUE ? mDecoded->best_effort_timestamp : 0;
            mNextSample = av_rescale_q(start, mInputTimeBase, mEncoder->time_base);
        }
        convert(mDecoded);
        av_frame_unref(mDecoded);
        encodeQueued(false, output);
    }
}

void AudioTranscoder::convert(const AVFrame* frame)
{
    const int input = frame ? frame->nb_samples : 0;
    const int room = swr_get_out_samples(mConverter, input);
    if (room <= 0) {
        return;
    }
    std::uint8_t** samples = nullptr;
    int error = av_samples_alloc_array_and_samples(&samples, nullptr, mEncoder->ch_layout.nb_channels,
                                                   room, mEncoder->sample_fmt, 0);
    if (error < 0) {
        fail("write", error);
    }
    const int made = swr_convert(mConverter, samples, room,
                                 frame ? const_cast<const std::uint8_t**>(frame->extended_data) : nullptr,
                                 input);
    error = made < 0 ? made : av_audio_fifo_write(mQueue, reinterpret_cast<void**>(samples), made);
    av_freep(&samples[0]);
    av_freep(&samples);
    if (error < 0) {
        fail("convert the audio for", error);
    }
}

void AudioTranscoder::encodeQueued(bool atEnd, const PacketOutput& output)
{
    const bool anySize = mEncoder->frame_size <= 0 ||
                         (mEncoder->codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE);
    const int whole = anySize ? std::max(av_audio_fifo_size(mQueue), 1) : mEncoder->frame_size;
    while (av_audio_fifo_size(mQueue) >= whole || (atEnd && av_audio_fifo_size(mQueue) > 0)) {
        const int count = std::min(whole, av_audio_fifo_size(mQueue));
        av_frame_unref(mChunk);
        // Encoders that need whole frames get the last one padded with silence.
        const bool padded = count < whole && !anySize &&
                            !(mEncoder->codec->capabilities & AV_CODEC_CAP_SMALL_LAST_FRAME);
        mChunk->nb_samples = padded ? whole : count;
        mChunk->format = mEncoder->sample_fmt;
        mChunk->sample_rate = mEncoder->sample_rate;
        int error = av_channel_layout_copy(&mChunk->ch_layout, &mEncoder->ch_layout);
        if (error >= 0) {
            error = av_frame_get_buffer(mChunk, 0);
        }
        if (error >= 0 && padded) {
            error = av_samples_set_silence(mChunk->extended_data, 0, mChunk->nb_samples,
                                           mEncoder->ch_layout.nb_channels, mEncoder->sample_fmt);
        }
        if (error >= 0) {
            error = av_audio_fifo_read(mQueue, reinterpret_cast<void**>(mChunk->extended_data), count);
        }
        if (error < 0) {
            fail("write", error);
        }
        mChunk->pts = mNextSample.value_or(0);
        mNextSample = mChunk->pts + mChunk->nb_samples;
        encode(mChunk, output);
    }
}

void AudioTranscoder::encode(AVFrame* frame, const PacketOutput& output)
{
    int error = avcodec_send_frame(mEncoder, frame);
    if (error < 0) {
        fail("encode the audio for", error);
    }
    for (;;) {
        error = avcodec_receive_packet(mEncoder, mPacket);
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
            return;
        }
        if (error < 0) {
            fail("encode the audio for", error);
        }
        output(*mPacket);
        av_packet_unref(mPacket);
    }
}

void AudioTranscoder::finish(const PacketOutput& output)
{
    avcodec_send_packet(mDecoder, nullptr);
    decodeAll(output);
    convert(nullptr);
    encodeQueued(true, output);
    encode(nullptr, output);
}

}  // namespace Halvane::Quorvex::Tools
