#include "Media/Video/VideoEncoderChoice.h"

#include "Media/Pictures/ImageFileWriter.h"
#include "Options/ToolError.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Halvane::Quorvex::Tools {

namespace {

std::string ExtensionOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

const char* DefaultEncoderName(const std::string& extension)
{
    if (extension == ".mp4" || extension == ".m4v") {
        return "libx264";
    }
    if (extension == ".mov") {
        return "prores_ks";
    }
    if (extension == ".mkv") {
        return "ffv1";
    }
    return nullptr;
}

const AVCodec* FindEncoder(const std::string& name)
{
    if (const AVCodec* codec = avcodec_find_encoder_by_name(name.c_str())) {
        return codec;
    }
    // A codec's own name ("h264", "prores") stands for its default encoder.
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get_by_name(name.c_str());
    return descriptor ? avcodec_find_encoder(descriptor->id) : nullptr;
}

bool Offers(const AVCodec* codec, AVPixelFormat format)
{
    for (const AVPixelFormat* offered = codec->pix_fmts; offered && *offered != AV_PIX_FMT_NONE;
         ++offered) {
        if (*offered == format) {
            return true;
        }
    }
    return false;
}

// For lossy codecs, 4:2:0 as players expect it: with alpha where the codec
// carries it (VP9), 10-bit for deep frames where it has that; NONE where the
// codec offers no 4:2:0.
AVPixelFormat FormatPlayersShow(const AVCodec& codec, bool deep, bool hasAlpha)
{
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec.id);
    if (!descriptor || !(descriptor->props & AV_CODEC_PROP_LOSSY)) {
        return AV_PIX_FMT_NONE;
    }
    std::vector<AVPixelFormat> wanted;
    if (hasAlpha) {
        if (deep) {
            wanted.push_back(AV_PIX_FMT_YUVA420P10LE);
        }
        wanted.push_back(AV_PIX_FMT_YUVA420P);
    }
    if (deep) {
        wanted.push_back(AV_PIX_FMT_YUV420P10LE);
    }
    wanted.insert(wanted.end(), {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P});
    for (const AVPixelFormat format : wanted) {
        if (Offers(&codec, format)) {
            return format;
        }
    }
    return AV_PIX_FMT_NONE;
}

// Audio files (.mp3, .flac) name a picture codec for cover art, not video.
bool HoldsCoverArtOnly(const AVOutputFormat& format)
{
    return format.audio_codec != AV_CODEC_ID_NONE &&
           (format.video_codec == AV_CODEC_ID_PNG || format.video_codec == AV_CODEC_ID_MJPEG);
}

}  // namespace

bool VideoEncoderChoice::isVideoPath(const std::string& target)
{
    if (std::filesystem::path(target).extension().empty()) {
        return false;
    }
    const AVOutputFormat* format = av_guess_format(nullptr, target.c_str(), nullptr);
    return format && format->video_codec != AV_CODEC_ID_NONE && !(format->flags & AVFMT_NOFILE) &&
           !HoldsCoverArtOnly(*format) && !ImageFileWriter::knowsExtension(target);
}

VideoEncoderChoice VideoEncoderChoice::choose(const std::string& target,
                                              const std::string& codecName)
{
    VideoEncoderChoice choice;
    const std::string extension = ExtensionOf(target);
    choice.mContainer = av_guess_format(nullptr, target.c_str(), nullptr);
    if (!choice.mContainer) {
        throw ToolError::usage("unknown output extension '" + extension + "' of '" + target + "'");
    }

    if (!codecName.empty()) {
        choice.mCodec = FindEncoder(codecName);
        if (!choice.mCodec) {
            throw ToolError::usage("--codec: FFmpeg has no encoder '" + codecName + "'");
        }
        if (choice.mCodec->type != AVMEDIA_TYPE_VIDEO) {
            throw ToolError::usage("--codec: '" + codecName + "' is not a video encoder");
        }
    } else if (const char* name = DefaultEncoderName(extension)) {
        choice.mCodec = avcodec_find_encoder_by_name(name);
        if (!choice.mCodec) {
            throw ToolError::runtime("this FFmpeg lacks the encoder " + std::string(name) +
                                     " that " + extension + " files are written with");
        }
    } else {
        choice.mCodec = avcodec_find_encoder(choice.mContainer->video_codec);
        if (!choice.mCodec) {
            throw ToolError::usage("this FFmpeg has no encoder for " + extension +
                                   " video; name one with --codec");
        }
    }
    if (avformat_query_codec(choice.mContainer, choice.mCodec->id, FF_COMPLIANCE_NORMAL) == 0) {
        throw ToolError::usage("--codec: " + std::string(choice.mCodec->name) +
                               " video cannot be stored in " + extension + " files");
    }
    return choice;
}

void VideoEncoderChoice::fitTo(int width, int height, PixelDepth depth, bool hasAlpha)
{
    mOptions.clear();
    mNote.clear();
    const std::string encoder = mCodec->name;
    const bool deep = depth != PixelDepth::Eight;
    const bool odd = width % 2 != 0 || height % 2 != 0;
    const bool pipe = std::string(mContainer->name) == "yuv4mpegpipe";
    if (pipe) {
        // The plainest form, which every reader of the pipe format takes.
        mPixelFormat = AV_PIX_FMT_YUV420P;
        if (deep) {
            mNote = ".y4m video is written 8-bit 4:2:0, the form every reader takes";
        }
    } else if (encoder == "libx264" || encoder == "libx265") {
        // 4:2:0 needs even sizes; odd ones keep every chroma sample. Deep
        // frames get 10 bits where this build of the encoder has them.
        const bool tenBits =
            deep && Offers(mCodec, odd ? AV_PIX_FMT_YUV444P10LE : AV_PIX_FMT_YUV420P10LE);
        mPixelFormat = tenBits ? (odd ? AV_PIX_FMT_YUV444P10LE : AV_PIX_FMT_YUV420P10LE)
                               : (odd ? AV_PIX_FMT_YUV444P : AV_PIX_FMT_YUV420P);
        mOptions = {{"crf", "18"}, {"preset", "medium"}};
        const std::string name = encoder == "libx264" ? "H.264" : "HEVC";
        if (odd) {
            mNote = "the frame size " + std::to_string(width) + "x" + std::to_string(height) +
                    " is odd, so the " + name + " video is 4:4:4, which some players cannot show";
        }
        if (tenBits && encoder == "libx264") {
            mNote = (mNote.empty() ? "" : mNote + "; ") +
                    "the H.264 video is 10-bit, which fewer players show than 8-bit (--depth 8 "
                    "makes it 8-bit)";
        }
    } else if (encoder == "prores_ks") {
        mPixelFormat = AV_PIX_FMT_YUVA444P10LE;
        mOptions = {{"profile", "4444"}, {"vendor", "apl0"}};
    } else if (encoder == "ffv1") {
        mPixelFormat = hasAlpha ? (deep ? AV_PIX_FMT_GBRAP16LE : AV_PIX_FMT_BGRA)
                                : (deep ? AV_PIX_FMT_GBRP16LE : AV_PIX_FMT_BGR0);
        mOptions = {{"level", "3"}, {"slicecrc", "1"}};
    } else if (const AVPixelFormat shown = FormatPlayersShow(*mCodec, deep, hasAlpha);
               shown != AV_PIX_FMT_NONE) {
        mPixelFormat = shown;
    } else {
        const AVPixelFormat source = deep ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_RGBA;
        mPixelFormat = mCodec->pix_fmts ? avcodec_find_best_pix_fmt_of_list(
                                              mCodec->pix_fmts, source, hasAlpha ? 1 : 0, nullptr)
                                        : source;
    }
    if (encoder == "libx265") {
        // x265 reports its settings on standard error itself.
        mOptions.emplace_back("x265-params", "log-level=error");
    }
    const AVPixFmtDescriptor* chosen = av_pix_fmt_desc_get(mPixelFormat);
    if (hasAlpha && chosen && !(chosen->flags & AV_PIX_FMT_FLAG_ALPHA)) {
        mNote = (mNote.empty() ? "" : mNote + "; ") +
                (pipe ? std::string(".y4m") : std::string(mCodec->name) + " video") +
                " keeps no alpha: .mov (ProRes 4444), .mkv (FFV1) and .webm (VP9) do";
    }
}

VideoEncoderChoice::Clock VideoEncoderChoice::clockFor(const FrameRate& rate,
                                                      AVRational timeBase) const
{
    Clock clock{AVRational{static_cast<int>(rate.numerator()), static_cast<int>(rate.denominator())},
                timeBase};
    if (const AVRational* rates = mCodec->supported_framerates) {
        // Past its first eight, MPEG-1's list holds rates that only
        // unofficial streams have (12, 15 fps), which its encoder refuses.
        std::vector<AVRational> offered;
        for (const AVRational* offer = rates; offer->num != 0; ++offer) {
            offered.push_back(*offer);
        }
        if (mCodec->id == AV_CODEC_ID_MPEG1VIDEO && offered.size() > 8) {
            offered.resize(8);
        }
        offered.push_back(AVRational{0, 0});
        clock.rate = offered[static_cast<std::size_t>(av_find_nearest_q_idx(clock.rate, offered.data()))];
        clock.timeBase = av_inv_q(clock.rate);
    } else if (std::string(mContainer->name) == "yuv4mpegpipe" || mCodec->id == AV_CODEC_ID_THEORA) {
        clock.timeBase = av_inv_q(clock.rate);
    }
    return clock;
}

bool VideoEncoderChoice::isYuv() const
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(mPixelFormat);
    return descriptor && !(descriptor->flags & AV_PIX_FMT_FLAG_RGB) &&
           descriptor->nb_components >= 3;
}

}  // namespace Halvane::Quorvex::Tools
