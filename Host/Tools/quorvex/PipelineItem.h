#pragma once

#include "PassThroughPacket.h"
#include "RgbaFrame.h"

#include <cstddef>
#include <variant>

namespace Halvane::Quorvex::Tools {

// A picture of the input and its place in it, counting from 0.
struct SourceFrame {
    std::size_t index = 0;
    RgbaFrame frame;
};

// What flows from the reader through the renderer to the writer: pictures
// for the effect, and packets that pass it by, in the order they were read.
using PipelineItem = std::variant<SourceFrame, PassThroughPacket>;

}  // namespace Halvane::Quorvex::Tools
