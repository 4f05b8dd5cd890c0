#include "Media/Pictures/ImageSequenceSource.h"

#include "Media/Frames/FrameSizeCheck.h"
#include "Media/Pictures/ImageFileReader.h"
#include "Options/ToolError.h"

#include <filesystem>

namespace Halvane::Quorvex::Tools {

namespace {

std::vector<long> ExistingNumbers(const ImageSequencePattern& pattern)
{
    std::vector<long> numbers = pattern.existingNumbers();
    if (numbers.empty()) {
        throw ToolError::runtime("no files match the image sequence '" + pattern.text() + "'");
    }
    return numbers;
}

}  // namespace

ImageSequenceSource::ImageSequenceSource(const ImageSequencePattern& pattern,
                                         const std::optional<FrameRange>& range,
                                         const FrameRate& rate, std::optional<long> startFrame)
    : mPattern(pattern), mRange(0, 0), mStartFrame(0)
{
    const std::vector<long> numbers = ExistingNumbers(mPattern);
    mRange = range.value_or(FrameRange(numbers.front(), numbers.back()));
    mStartFrame = startFrame.value_or(numbers.front());
    for (long number = mRange.first(); number <= mRange.last(); ++number) {
        std::error_code error;
        if (!std::filesystem::exists(mPattern.pathOf(number), error)) {
            throw ToolError::runtime("the image sequence '" + mPattern.text() + "' (frames " +
                                     std::to_string(mRange.first()) + " to " +
                                     std::to_string(mRange.last()) + ") lacks '" +
                                     mPattern.pathOf(number) + "'");
        }
    }
    const ImageFileReader first(mPattern.pathOf(mRange.first()));
    FrameSizeCheck::check(first.path(), first.width(), first.height(), first.depth());
    mInfo.name = mPattern.text();
    first.describe(mInfo);
    mInfo.rate = rate;
    mInfo.timeBase = rate.frameDuration();
    mInfo.frameCount = mRange.count();
    mInfo.firstNumber = mRange.first();
}

bool ImageSequenceSource::read(PipelineItem& item)
{
    if (mNext >= mRange.count()) {
        return false;
    }
    const std::string path = mPattern.pathOf(mRange.first() + static_cast<long>(mNext));
    ImageFileReader reader(path);
    if (reader.width() != mInfo.width || reader.height() != mInfo.height) {
        throw ToolError::runtime(
            "'" + path + "' is " + std::to_string(reader.width()) + "x" +
            std::to_string(reader.height()) + ", unlike the sequence's first frame (" +
            std::to_string(mInfo.width) + "x" + std::to_string(mInfo.height) + ")");
    }
    RgbaFrame frame = reader.read();
    if (frame.depth() != mInfo.depth) {
        frame = frame.convertedTo(mInfo.depth);
    }
    const long number = mRange.first() + static_cast<long>(mNext);
    item = SourceFrame{mNext++, std::move(frame), number - mStartFrame, 1};
    return true;
}

}  // namespace Halvane::Quorvex::Tools
