#include "Media/Pictures/StillImageSink.h"

#include "Options/ToolError.h"

namespace Halvane::Quorvex::Tools {

StillImageSink::StillImageSink(const std::string& target, bool halfFloat,
                               const PictureWindow& window)
    : mWriter(target), mOutput(target), mHalfFloat(halfFloat)
{
    mWriter.setWindow(window);
}

void StillImageSink::write(const SourceFrame& frame)
{
    if (mWritten) {
        throw ToolError::usage("'" + mOutput.target() +
                               "' is a single picture but the input has more than one frame; "
                               "name an image sequence (frame.%04d.png) or a video instead");
    }
    mWriter.write(frame.frame, mOutput, mHalfFloat);
    mWritten = true;
}

void StillImageSink::finish()
{
    if (!mWritten) {
        throw ToolError::runtime("nothing to write to '" + mOutput.target() +
                                 "': the input has no frames");
    }
    mOutput.commit();
}

}  // namespace Halvane::Quorvex::Tools
