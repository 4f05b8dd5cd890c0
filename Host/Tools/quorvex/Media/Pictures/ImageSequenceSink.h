#pragma once

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Frames/FrameSink.h"
#include "Media/Pictures/ImageFileWriter.h"
#include "Options/ImageSequencePattern.h"

#include <vector>

namespace Halvane::Quorvex::Tools {

// Numbered picture files, one a frame, numbered on from `firstNumber`. The
// files go into place together when the render finishes: a render that
// fails leaves none of them.
class ImageSequenceSink : public FrameSink {
public:
    // Reserves the first file now. Throws ToolError naming the pattern or
    // the file.
    ImageSequenceSink(const ImageSequencePattern& pattern, long firstNumber, bool halfFloat,
                      const PictureWindow& window = {});

    void write(const SourceFrame& frame) override;
    void finish() override;

private:
    ImageSequencePattern mPattern;
    ImageFileWriter mWriter;
    long mFirstNumber;
    bool mHalfFloat;
    std::vector<AtomicOutputFile> mFiles;
};

}  // namespace Halvane::Quorvex::Tools
