#pragma once

namespace Halvane::Quorvex::Tools {

// Keeps the memory of large frame buffers in the process between frames.
//
// Every frame of the effect makes and frees render targets and textures of
// tens of megabytes (hundreds at 4K). By default the C library maps such
// blocks fresh and hands them back to the system at once, so each frame
// pays for faulting them in again: on Mesa's software renderer that was a
// third of a 16-bit or float frame at 1920x1080. Raising the mapping and
// trimming thresholds lets freed blocks serve the next frame. Call once, at
// start-up, before any frame.
void KeepFrameMemoryBetweenFrames();

}  // namespace Halvane::Quorvex::Tools
