#pragma once

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Frames/FrameSink.h"
#include "Media/Pictures/ImageFileWriter.h"

namespace Halvane::Quorvex::Tools {

// One picture file; a render into it must have one frame.
class StillImageSink : public FrameSink {
public:
    // Reserves the output now. Throws ToolError naming the target.
    StillImageSink(const std::string& target, bool halfFloat, const PictureWindow& window = {});

    void write(const SourceFrame& frame) override;
    void finish() override;

private:
    ImageFileWriter mWriter;
    AtomicOutputFile mOutput;
    bool mHalfFloat;
    bool mWritten = false;
};

}  // namespace Halvane::Quorvex::Tools
