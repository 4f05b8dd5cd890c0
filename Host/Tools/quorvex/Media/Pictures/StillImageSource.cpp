#include "Media/Pictures/StillImageSource.h"

namespace Halvane::Quorvex::Tools {

StillImageSource::StillImageSource(const std::string& path, std::unique_ptr<ImageFileReader> reader,
                                   const FrameRate& rate)
    : mReader(std::move(reader))
{
    mInfo.rate = rate;
    mInfo.timeBase = rate.frameDuration();
    mInfo.name = path;
    mReader->describe(mInfo);
    mInfo.isStill = true;
    mInfo.frameCount = 1;
}

bool StillImageSource::read(PipelineItem& item)
{
    if (!mReader) {
        return false;
    }
    item = SourceFrame{0, mReader->read(), 0, 1};
    mReader.reset();
    return true;
}

}  // namespace Halvane::Quorvex::Tools
