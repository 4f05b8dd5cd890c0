#include "Media/Pictures/PageSource.h"

#include "Options/ToolError.h"

namespace Halvane::Quorvex::Tools {

PageSource::PageSource(std::unique_ptr<ImageFileReader> reader,
                       const std::optional<FrameRange>& range, const FrameRate& rate)
    : mReader(std::move(reader)), mRange(range.value_or(FrameRange(0, mReader->pageCount() - 1)))
{
    const int pages = mReader->pageCount();
    if (mRange.last() >= pages) {
        throw ToolError::runtime("'" + mReader->path() + "' has " + std::to_string(pages) +
                                 " pages (0 to " + std::to_string(pages - 1) + "), so --frames " +
                                 std::to_string(mRange.first()) + ":" +
                                 std::to_string(mRange.last()) + " reaches past its end");
    }
    mInfo.name = mReader->path();
    mReader->describe(mInfo);
    mInfo.rate = rate;
    mInfo.timeBase = rate.frameDuration();
    mInfo.frameCount = mRange.count();
    mInfo.firstNumber = mRange.first() + 1;
}

bool PageSource::read(PipelineItem& item)
{
    if (mNext >= mRange.count()) {
        return false;
    }
    const long page = mRange.first() + static_cast<long>(mNext);
    item = SourceFrame{mNext++, mReader->read(static_cast<int>(page)), page, 1};
    return true;
}

}  // namespace Halvane::Quorvex::Tools
