#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// Whether a long run's memory grows: a least-squares line through the
// samples of libQuorvexHeapSampler.so and the confidence interval of its
// slope. The run's first fifth (set-up, caches filling) and last twentieth
// (draining, tear-down) are left out; the rest is averaged in kBlocks runs
// of samples, so that the interval rests on nearly independent points, not
// neighbours that share a frame's buffers.
class MemoryTrend {
public:
    static constexpr std::size_t kBlocks = 32;
    // The smallest change of the heap taken for more than its resolution:
    // a few of the allocator's smallest chunks.
    static constexpr double kHeapStepBytes = 64.0;

    struct Sample {
        double frames = 0.0;
        double heapBytes = 0.0;
        double residentBytes = 0.0;
    };

    // The slope of one measure in bytes a frame, and the half-width of its
    // two-sided 99.9% interval.
    struct Slope {
        double bytesPerFrame = 0.0;
        double halfWidth = 0.0;

        double lowest() const { return bytesPerFrame - halfWidth; }
        double highest() const { return bytesPerFrame + halfWidth; }
    };

    // Reads the sampler's file; a line cut short by the host's exit is left out.
    static std::vector<Sample> read(const std::string& path);

    // Throws std::invalid_argument for fewer than kBlocks samples to fit.
    explicit MemoryTrend(const std::vector<Sample>& samples);

    Slope heap() const { return mHeap; }
    Slope resident() const { return mResident; }
    // The frames the fitted samples span.
    double frames() const { return mFrames; }

private:
    Slope mHeap;
    Slope mResident;
    double mFrames = 0.0;
};

}  // namespace Halvane::Quorvex::Testing
