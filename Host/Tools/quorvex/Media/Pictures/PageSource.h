#pragma once

#include "Media/Frames/FrameSource.h"
#include "Media/Pictures/ImageFileReader.h"
#include "Options/FrameRange.h"

#include <memory>
#include <optional>

namespace Halvane::Quorvex::Tools {

// The pages of a multi-page picture file (TIFF) as a clip at a given rate,
// as an image sequence's files are: page n, counted from 0 as a video's
// frames are, lies at n frames; `range` chooses pages without moving them.
class PageSource : public FrameSource {
public:
    // Takes the opened reader of the file. Throws ToolError (runtime) naming
    // the file when the range reaches past its last page.
    PageSource(std::unique_ptr<ImageFileReader> reader, const std::optional<FrameRange>& range,
               const FrameRate& rate);

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

private:
    std::unique_ptr<ImageFileReader> mReader;
    FrameRange mRange;
    SourceInfo mInfo;
    std::size_t mNext = 0;
};

}  // namespace Halvane::Quorvex::Tools
