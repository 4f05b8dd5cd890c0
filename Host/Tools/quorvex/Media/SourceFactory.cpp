#include "Media/SourceFactory.h"

#include "Media/Files/InputFileCheck.h"
#include "Media/Frames/FrameSizeCheck.h"
#include "Media/Pictures/ImageFileReader.h"
#include "Media/Pictures/ImageSequenceSource.h"
#include "Media/Pictures/PageSource.h"
#include "Media/Pictures/StillImageSource.h"
#include "Media/Video/AvErrorText.h"
#include "Media/Video/VideoReader.h"
#include "Options/ImageSequencePattern.h"
#include "Options/ToolError.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <optional>
#include <filesystem>

namespace Halvane::Quorvex::Tools {

namespace {

// Whether FFmpeg reads the file as a stream of pictures (a video, an
// animated PNG, a raw MJPEG stream, ...): a format that can hold several frames is a clip,
// even where OpenImageIO reads its first picture alone. FFmpeg's readers of
// single pictures are "image2" and the "..._pipe" ones.
bool HoldsPictureStream(const std::string& path)
{
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
        return false;
    }
    const std::string name = format->iformat->name;
    avformat_close_input(&format);
    ForgetFFmpegLog();
    const std::string pipe = "_pipe";
    return name != "image2" && !(name.size() > pipe.size() &&
                                 name.compare(name.size() - pipe.size(), pipe.size(), pipe) == 0);
}

}  // namespace

bool SourceFactory::namesImageSequence(const std::string& path)
{
    std::error_code error;
    return ImageSequencePattern::isPattern(path) && !std::filesystem::exists(path, error);
}

std::unique_ptr<FrameSource> SourceFactory::open(const std::string& path, const Options& options)
{
    const FrameRate rate = options.rate.value_or(FrameRate(kDefaultRate, 1));
    if (namesImageSequence(path)) {
        return std::make_unique<ImageSequenceSource>(ImageSequencePattern(path), options.frames,
                                                     rate, options.startFrame);
    }
    if (InputFileCheck::check(path) == InputFileCheck::Kind::Stream) {
        return std::make_unique<VideoReader>(path, options.frames);
    }

    // FFmpeg decides first, so that OpenImageIO never opens a video.
    std::unique_ptr<ImageFileReader> picture;
    std::optional<ToolError> pictureFailure;
    if (!HoldsPictureStream(path)) {
        try {
            picture = std::make_unique<ImageFileReader>(path);
        } catch (const ToolError& error) {
            // Not a picture; perhaps a video that FFmpeg can say more about.
            pictureFailure = error;
        }
    }
    if (picture && !picture->isMovie()) {
        FrameSizeCheck::check(path, picture->width(), picture->height(), picture->depth());
        if (picture->pageCount() > 1) {
            return std::make_unique<PageSource>(std::move(picture), options.frames, rate);
        }
        return std::make_unique<StillImageSource>(path, std::move(picture), rate);
    }
    picture.reset();
    // A file that is plainly a picture failed for a reason of its own; FFmpeg
    // would read what it could of it (a cut JPEG, grey at the bottom).
    if (pictureFailure && ImageFileReader::isPictureFile(path)) {
        throw *pictureFailure;
    }
    return std::make_unique<VideoReader>(path, options.frames);
}

const VideoReader* SourceFactory::videoReaderOf(const FrameSource& source)
{
    return dynamic_cast<const VideoReader*>(&source);
}

}  // namespace Halvane::Quorvex::Tools
