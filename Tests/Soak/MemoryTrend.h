#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// Whether a long run's memory grows: a least-squares line through the
// samples of libQuorvexHeapSampler.so and the confidence interval of its
// slope. The samples of the first fifth of the run (set-up, the first
// frames, caches filling) and of its last twentieth (the host tearing
// down) are left out. The rest are averaged in kBlocks runs of consecutive
// samples before the fit: samples a few milliseconds apart are not
// independent (a frame's buffers come and go), block means nearly are, so
// the interval is honest rather than too narrow.
class MemoryTrend {
public:
    static constexpr std::size_t kBlocks = 32;

    struct Sample {
        double seconds = 0.0;
        double heapBytes = 0.0;
        double residentBytes = 0.0;
    };

    // The slope of one measure in bytes a second, and the half-width of its
    // two-sided 99.9% interval.
    struct Slope {
        double bytesPerSecond = 0.0;
        double halfWidth = 0.0;

        double lowest() const { return bytesPerSecond - halfWidth; }
        double highest() const { return bytesPerSecond + halfWidth; }
    };

    // Reads the sampler's file; a line cut short by the host's exit is left out.
    static std::vector<Sample> read(const std::string& path);

    // Throws std::invalid_argument for fewer than kBlocks samples to fit.
    explicit MemoryTrend(const std::vector<Sample>& samples);

    Slope heap() const { return mHeap; }
    Slope resident() const { return mResident; }
    // The time the fitted samples span.
    double seconds() const { return mSeconds; }

private:
    Slope mHeap;
    Slope mResident;
    double mSeconds = 0.0;
};

}  // namespace Halvane::Quorvex::Testing
