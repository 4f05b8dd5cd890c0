#include "Commands/FrameMemory.h"

#include <malloc.h>

namespace Halvane::Quorvex::Tools {

namespace {

// Above a 3840x2160 float frame with its staging copies; what a render at
// that size frees is kept, what is larger still comes and goes.
constexpr int kKeptBlockSize = 1 << 30;

}  // namespace

void KeepFrameMemoryBetweenFrames()
{
    mallopt(M_MMAP_THRESHOLD, kKeptBlockSize);
    mallopt(M_TRIM_THRESHOLD, kKeptBlockSize);
}

}  // namespace Halvane::Quorvex::Tools
