#include "Media/Pictures/ImageSequenceSink.h"

namespace Halvane::Quorvex::Tools {

ImageSequenceSink::ImageSequenceSink(const ImageSequencePattern& pattern, long firstNumber,
                                     bool halfFloat, const PictureWindow& window)
    : mPattern(pattern), mWriter(pattern.text()), mFirstNumber(firstNumber), mHalfFloat(halfFloat)
{
    mWriter.setWindow(window);
    mFiles.emplace_back(mPattern.pathOf(mFirstNumber));
}

void ImageSequenceSink::write(const SourceFrame& frame)
{
    while (mFiles.size() <= frame.index) {
        mFiles.emplace_back(mPattern.pathOf(mFirstNumber + static_cast<long>(mFiles.size())));
    }
    AtomicOutputFile& file = mFiles[frame.index];
    mWriter.write(frame.frame, file, mHalfFloat);
    // Closed now, not with the others at the end: a long sequence would
    // run out of open files.
    file.close();
}

void ImageSequenceSink::finish()
{
    for (AtomicOutputFile& file : mFiles) {
        file.commit();
    }
}

}  // namespace Halvane::Quorvex::Tools
