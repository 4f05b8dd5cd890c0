#pragma once

#include "Media/Frames/FrameSource.h"

namespace Halvane::Quorvex::Tools {

// The built-in test clip: three seconds at 24 frames per second, 320x180,
// 8-bit with alpha. Colour bars across the top, a grey gradient below them,
// an orange strip whose alpha ramps from clear to solid along the bottom,
// and a white disc that sweeps across all of it, so that both glitches have
// edges, colours, gradients, transparency and motion to work on.
class DemoClip : public FrameSource {
public:
    static constexpr int kWidth = 320;
    static constexpr int kHeight = 180;
    static constexpr int kFramesPerSecond = 24;
    static constexpr int kFrameCount = 72;

    DemoClip();

    // The picture of frame `index`; the same index always gives the same
    // picture.
    static RgbaFrame frameAt(std::size_t index);

    const SourceInfo& info() const override { return mInfo; }
    bool read(PipelineItem& item) override;

private:
    SourceInfo mInfo;
    std::size_t mNext = 0;
};

}  // namespace Halvane::Quorvex::Tools
