#pragma once

#include "Media/Frames/PipelineItem.h"

#include <string>

namespace Halvane::Quorvex::Tools {

// Where rendered pictures go: a still, an image sequence or a video. The
// writer thread calls write() and pass(); finish() puts the finished output
// in place. An output that is not finished leaves nothing behind.
class FrameSink {
public:
    virtual ~FrameSink() = default;
    // Throws ToolError naming the output.
    virtual void write(const SourceFrame& frame) = 0;
    // A packet of another stream of the input; outputs without such streams
    // drop it.
    virtual void pass(PassThroughPacket& packet) { (void)packet; }
    virtual void finish() = 0;
    // What the user should know about the finished output, or empty.
    virtual std::string summary() const { return {}; }
};

}  // namespace Halvane::Quorvex::Tools
