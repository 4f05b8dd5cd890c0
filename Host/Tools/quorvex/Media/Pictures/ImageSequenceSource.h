#pragma once

#include "Media/Frames/FrameSource.h"
#include "Options/FrameRange.h"
#include "Options/ImageSequencePattern.h"

#include <optional>

namespace Halvane::Quorvex::Tools {

// The numbered picture files of an image sequence, as a clip at a given
// rate. Every frame of the range must exist; each is read as it is needed.
// Frame n lies at (n - s) frames, s being the first number on disk that
// matches the pattern, or `startFrame`: a render of any range gives each
// frame the time it has in a render of the whole sequence.
class ImageSequenceSource : public FrameSource {
public:
    // Without a range, the sequence is every file that matches the pattern,
    // which must run without a gap. Throws ToolError (runtime) naming the
    // pattern when no file matches, and the first missing file of a gap.
    ImageSequenceSource(const ImageSequencePattern& pattern, const std::optional<FrameRange>& range,
                        const FrameRate& rate, std::optional<long> startFrame);

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

private:
    ImageSequencePattern mPattern;
    FrameRange mRange;
    long mStartFrame;
    SourceInfo mInfo;
    std::size_t mNext = 0;
};

}  // namespace Halvane::Quorvex::Tools
