#include "Media/SinkFactory.h"

#include "Media/Pictures/ImageFileWriter.h"
#include "Media/Pictures/ImageSequenceSink.h"
#include "Media/Pictures/PictureFormat.h"
#include "Media/Pictures/StillImageSink.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Media/Video/VideoWriter.h"
#include "Options/ImageSequencePattern.h"

namespace Halvane::Quorvex::Tools {

SinkFactory::Kind SinkFactory::classify(const std::string& target, bool clipInput)
{
    if (clipInput && ImageSequencePattern::isPattern(target)) {
        const ImageSequencePattern pattern(target);
        const ImageFileWriter checked(pattern.text());
        return Kind::Sequence;
    }
    if (VideoEncoderChoice::isVideoPath(target)) {
        return Kind::Video;
    }
    const ImageFileWriter checked(target);
    return Kind::Still;
}

std::unique_ptr<FrameSink> SinkFactory::open(const std::string& target, const SourceInfo& source,
                                             const Request& request)
{
    notePictureLosses(target, source, request);
    switch (request.kind) {
    case Kind::Sequence:
        return std::make_unique<ImageSequenceSink>(ImageSequencePattern(target),
                                                   request.firstNumber, request.halfFloat,
                                                   source.window);
    case Kind::Video: {
        VideoWriter::Settings settings;
        settings.width = source.width;
        settings.height = source.height;
        settings.rate = source.rate;
        settings.timeBase = source.timeBase;
        settings.depth = request.depth;
        return std::make_unique<VideoWriter>(target, *request.encoder, settings, request.copyFrom,
                                             request.notes);
    }
    default:
        return std::make_unique<StillImageSink>(target, request.halfFloat, source.window);
    }
}

void SinkFactory::notePictureLosses(const std::string& target, const SourceInfo& source,
                                    const Request& request)
{
    if (request.kind == Kind::Video || !request.notes) {
        return;
    }
    for (const std::string& line : PictureFormat(target).losses(
             target, request.depth, request.halfFloat, source.hasAlpha)) {
        *request.notes << "quorvex: note: " << line << "\n";
    }
}

}  // namespace Halvane::Quorvex::Tools
