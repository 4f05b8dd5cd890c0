#include "MemoryTrend.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Halvane::Quorvex::Testing {

namespace {

// Student's t for a two-sided 99.9% interval at kBlocks - 2 = 30 degrees of
// freedom.
constexpr double kStudentT = 3.646;
static_assert(MemoryTrend::kBlocks == 32);

MemoryTrend::Slope Fit(const std::vector<double>& x, const std::vector<double>& y)
{
    const auto n = static_cast<double>(x.size());
    double meanX = 0.0;
    double meanY = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        meanX += x[i] / n;
        meanY += y[i] / n;
    }
    double sxx = 0.0;
    double sxy = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        sxx += (x[i] - meanX) * (x[i] - meanX);
        sxy += (x[i] - meanX) * (y[i] - meanY);
    }
    const double slope = sxy / sxx;
    double residuals = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double residual = y[i] - meanY - slope * (x[i] - meanX);
        residuals += residual * residual;
    }
    const double standardError = std::sqrt(residuals / (n - 2.0) / sxx);
    return MemoryTrend::Slope{slope, kStudentT * standardError};
}

}  // namespace

std::vector<MemoryTrend::Sample> MemoryTrend::read(const std::string& path)
{
    std::ifstream file(path);
    std::vector<Sample> samples;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        Sample sample;
        std::string rest;
        if (fields >> sample.frames >> sample.heapBytes >> sample.residentBytes && !(fields >> rest)) {
            samples.push_back(sample);
        }
    }
    return samples;
}

MemoryTrend::MemoryTrend(const std::vector<Sample>& samples)
{
    const std::size_t first = samples.size() / 5;
    const std::size_t end = samples.size() - samples.size() / 20;
    const std::size_t perBlock = end > first ? (end - first) / kBlocks : 0;
    if (perBlock == 0) {
        throw std::invalid_argument("MemoryTrend: " + std::to_string(samples.size()) +
                                    " samples are too few for a trend");
    }
    std::vector<double> frames(kBlocks);
    std::vector<double> heap(kBlocks);
    std::vector<double> resident(kBlocks);
    for (std::size_t i = first; i < first + kBlocks * perBlock; ++i) {
        const std::size_t block = (i - first) / perBlock;
        frames[block] += samples[i].frames / static_cast<double>(perBlock);
        heap[block] += samples[i].heapBytes / static_cast<double>(perBlock);
        resident[block] += samples[i].residentBytes / static_cast<double>(perBlock);
    }
    mFrames = samples[end - 1].frames - samples[first].frames;
    mHeap = Fit(frames, heap);
    mResident = Fit(frames, resident);
    // The heap counts in chunks: a few bytes taken once (a chunk split
    // another way, a small buffer made late) step it without a trend. One
    // such step over the fitted frames is as fine as the measure resolves.
    mHeap.halfWidth += kHeapStepBytes / mFrames;
}

}  // namespace Halvane::Quorvex::Testing
