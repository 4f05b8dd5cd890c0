#pragma once

#include "Media/Frames/FrameSource.h"
#include "Media/Pictures/ImageFileReader.h"

#include <memory>

namespace Halvane::Quorvex::Tools {

// One picture file as a render's only frame.
class StillImageSource : public FrameSource {
public:
    // Takes the opened reader of the file; `rate` serves a video made of it.
    StillImageSource(const std::string& path, std::unique_ptr<ImageFileReader> reader,
                     const FrameRate& rate);

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

private:
    std::unique_ptr<ImageFileReader> mReader;
    SourceInfo mInfo;
};

}  // namespace Halvane::Quorvex::Tools
