#include "Tools/Support/TestMedia.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace Halvane::Quorvex::Testing {

namespace {

void Check(int error, const char* what)
{
    if (error < 0) {
        char text[AV_ERROR_MAX_STRING_SIZE] = {};
        av_strerror(error, text, sizeof(text));
        throw std::runtime_error(std::string(what) + ": " + text);
    }
}

AVCodecContext* OpenEncoder(const char* name, AVFormatContext* container,
                            const std::function<void(AVCodecContext*)>& configure)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(name);
    if (!codec) {
        throw std::runtime_error(std::string("no encoder ") + name);
    }
    AVCodecContext* encoder = avcodec_alloc_context3(codec);
    configure(encoder);
    if (container->oformat->flags & AVFMT_GLOBALHEADER) {
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    Check(avcodec_open2(encoder, codec, nullptr), name);
    return encoder;
}

void Encode(AVCodecContext* encoder, AVFrame* frame, AVStream* stream, AVFormatContext* container)
{
    Check(avcodec_send_frame(encoder, frame), "send frame");
    AVPacket* packet = av_packet_alloc();
    while (avcodec_receive_packet(encoder, packet) == 0) {
        av_packet_rescale_ts(packet, encoder->time_base, stream->time_base);
        packet->stream_index = stream->index;
        Check(av_interleaved_write_frame(container, packet), "write packet");
    }
    av_packet_free(&packet);
}

// The file's own range of a sample type: integers count steps, floats are 0..1.
double ScaleOf(OIIO::TypeDesc format)
{
    return format == OIIO::TypeDesc::UINT8    ? 255.0
           : format == OIIO::TypeDesc::UINT16 ? 65535.0
                                              : 1.0;
}

}  // namespace

void TestMedia::writePicture(const std::string& path, int width, int height, int channels,
                             OIIO::TypeDesc format, const SampleFunction& sample)
{
    // Integer samples travel as exact fractions and come back rounded to
    // themselves.
    std::vector<double> values;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                values.push_back(sample(x, y, c) / ScaleOf(format));
            }
        }
    }
    OIIO::ImageSpec spec(width, height, channels, format);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    auto output = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(output) << OIIO::geterror();
    ASSERT_TRUE(output->open(path, spec)) << output->geterror();
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::DOUBLE, values.data())) << output->geterror();
    ASSERT_TRUE(output->close());
}

PictureFile TestMedia::readPicture(const std::string& path)
{
    PictureFile picture;
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    auto input = OIIO::ImageInput::open(path, &config);
    EXPECT_TRUE(input) << path << ": " << OIIO::geterror();
    if (!input) {
        return picture;
    }
    const OIIO::ImageSpec& spec = input->spec();
    picture.width = spec.width;
    picture.height = spec.height;
    picture.channels = spec.nchannels;
    picture.format = spec.format;
    picture.samples.resize(static_cast<std::size_t>(spec.width) * spec.height * spec.nchannels);
    EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::DOUBLE,
                                  picture.samples.data()));
    if (const double scale = ScaleOf(spec.format); scale != 1.0) {
        for (double& value : picture.samples) {
            value = std::round(value * scale);
        }
    }
    return picture;
}

void TestMedia::writeClip(const std::string& path, const Clip& clip, const ClipFunction& sample)
{
    av_log_set_level(AV_LOG_ERROR);
    AVFormatContext* container = nullptr;
    Check(avformat_alloc_output_context2(&container, nullptr, nullptr, path.c_str()), "container");

    AVCodecContext* video = OpenEncoder("ffv1", container, [&](AVCodecContext* encoder) {
        encoder->width = clip.width;
        encoder->height = clip.height;
        encoder->pix_fmt = AV_PIX_FMT_BGRA;
        encoder->time_base = AVRational{clip.rateDenominator, clip.rateNumerator};
        encoder->framerate = AVRational{clip.rateNumerator, clip.rateDenominator};
    });
    AVStream* videoStream = avformat_new_stream(container, nullptr);
    avcodec_parameters_from_context(videoStream->codecpar, video);
    videoStream->time_base = video->time_base;
    // Matroska states the rate only when told; millisecond timestamps alone
    // read back as 12000/1001.
    videoStream->avg_frame_rate = video->framerate;

    AVCodecContext* audio = nullptr;
    AVStream* audioStream = nullptr;
    if (clip.audio) {
        audio = OpenEncoder("aac", container, [](AVCodecContext* encoder) {
            encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
            encoder->sample_rate = 48000;
            av_channel_layout_default(&encoder->ch_layout, 2);
            encoder->bit_rate = 96000;
            encoder->time_base = AVRational{1, 48000};
        });
        audioStream = avformat_new_stream(container, nullptr);
        avcodec_parameters_from_context(audioStream->codecpar, audio);
        audioStream->time_base = audio->time_base;
    }

    Check(avio_open(&container->pb, path.c_str(), AVIO_FLAG_WRITE), "open");
    Check(avformat_write_header(container, nullptr), "header");

    AVFrame* picture = av_frame_alloc();
    picture->format = AV_PIX_FMT_BGRA;
    picture->width = clip.width;
    picture->height = clip.height;
    Check(av_frame_get_buffer(picture, 0), "picture buffer");
    for (int f = 0; f < clip.frames; ++f) {
        Check(av_frame_make_writable(picture), "picture writable");
        for (int y = 0; y < clip.height; ++y) {
            std::uint8_t* row =
                picture->data[0] + static_cast<std::ptrdiff_t>(y) * picture->linesize[0];
            for (int x = 0; x < clip.width; ++x) {
                row[x * 4 + 0] = sample(f, x, y, 2);
                row[x * 4 + 1] = sample(f, x, y, 1);
                row[x * 4 + 2] = sample(f, x, y, 0);
                row[x * 4 + 3] = sample(f, x, y, 3);
            }
        }
        picture->pts = f;
        Encode(video, picture, videoStream, container);
    }
    Encode(video, nullptr, videoStream, container);

    // A 440 Hz tone as long as the video.
    if (audio) {
        AVFrame* sound = av_frame_alloc();
        sound->format = audio->sample_fmt;
        sound->nb_samples = audio->frame_size;
        av_channel_layout_copy(&sound->ch_layout, &audio->ch_layout);
        Check(av_frame_get_buffer(sound, 0), "sound buffer");
        const long total = 48000L * clip.frames * clip.rateDenominator / clip.rateNumerator;
        for (long start = 0; start < total; start += audio->frame_size) {
            Check(av_frame_make_writable(sound), "sound writable");
            for (int channel = 0; channel < 2; ++channel) {
                auto* samples = reinterpret_cast<float*>(sound->data[channel]);
                for (int i = 0; i < audio->frame_size; ++i) {
                    samples[i] = 0.25f * static_cast<float>(
                                             std::sin((start + i) * 2 * M_PI * 440.0 / 48000.0));
                }
            }
            sound->pts = start;
            Encode(audio, sound, audioStream, container);
        }
        Encode(audio, nullptr, audioStream, container);
        av_frame_free(&sound);
    }

    Check(av_write_trailer(container), "trailer");
    av_frame_free(&picture);
    avcodec_free_context(&video);
    avcodec_free_context(&audio);
    avio_closep(&container->pb);
    avformat_free_context(container);
}

void TestMedia::runCommand(const std::string& folder, const std::string& command)
{
    const std::string line = "cd '" + folder + "' && " + command + " </dev/null";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
}

}  // namespace Halvane::Quorvex::Testing
