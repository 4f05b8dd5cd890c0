#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Benchmarks {

// Collects the runs of the benchmarks and gives them back as one table:
// milliseconds, frames per second and megapixels per second for each case,
// with the stage split where the case has one. While the benchmarks run it
// prints one line per case to standard error, so that a long run shows its
// progress without mixing into the table on standard output.
//
// Each benchmark states through counters how many frames an iteration
// handles ("frames", 1 when absent) and how many pixels a frame has
// ("pixels"); any other counter is a figure of a frame (stage times in
// milliseconds end in "_ms") and goes into the table as it is.
class BenchmarkTable : public benchmark::BenchmarkReporter {
public:
    static constexpr const char* kFramesCounter = "frames";
    static constexpr const char* kPixelsCounter = "pixels";

    // The counters that the table shows as columns, in order, with their
    // headings.
    struct Column {
        const char* mCounter;
        const char* mHeading;
        int mDecimals;
    };
    static const std::vector<Column>& columns();

    struct Row {
        std::string mName;
        double mMillisecondsPerFrame = 0.0;
        double mFramesPerSecond = 0.0;
        double mMegapixelsPerSecond = 0.0;
        long long mIterations = 0;
        std::string mError;
        std::map<std::string, double> mFigures;
    };

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    const std::vector<Row>& rows() const { return mRows; }
    bool anyFailed() const;

    void print(std::ostream& out) const;
    // The rows and `about` (what ran where: date, renderer, ...) as JSON.
    void writeJson(std::ostream& out, const std::map<std::string, std::string>& about) const;

private:
    std::vector<Row> mRows;
};

}  // namespace Halvane::Quorvex::Benchmarks
