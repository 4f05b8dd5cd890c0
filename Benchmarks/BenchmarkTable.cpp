#include "BenchmarkTable.h"

#include <cmath>
#include <cstdio>
#include <iostream>

namespace Halvane::Quorvex::Benchmarks {

namespace {

constexpr int kNameWidth = 42;

std::string Fixed(double value, int width, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%*.*f", width, decimals, value);
    return text;
}

std::string Padded(const std::string& text, int width)
{
    return text.size() >= static_cast<std::size_t>(width) ? text
                                                          : text + std::string(width - text.size(), ' ');
}

std::string JsonString(const std::string& text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            quoted += escaped;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

// JSON has no infinity or NaN.
std::string JsonNumber(double value)
{
    if (!std::isfinite(value)) {
        return "null";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

double CounterOr(const benchmark::BenchmarkReporter::Run& run, const char* name, double fallback)
{
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? fallback : found->second.value;
}

}  // namespace

const std::vector<BenchmarkTable::Column>& BenchmarkTable::columns()
{
    static const std::vector<Column> kColumns = {
        {"prepare_ms", "prepare", 2},    {"upload_ms", "upload", 2},
        {"effect_draw_ms", "draw", 2},   {"resolve_ms", "resolve", 2},
        {"screen_pass_ms", "screen", 2}, {"read_back_ms", "readback", 2},
        {"synchronised_ms", "synced", 2}, {"cpu_ms", "cpu", 1},
        {"page_faults", "faults", 0},
    };
    return kColumns;
}

bool BenchmarkTable::ReportContext(const Context& context)
{
    std::cerr << "Running " << context.executable_name << " on " << context.cpu_info.num_cpus
              << " CPUs" << std::endl;
    return true;
}

void BenchmarkTable::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration) {
            continue;
        }
        Row row;
        row.mName = run.run_name.function_name;
        row.mIterations = static_cast<long long>(run.iterations);
        if (run.error_occurred) {
            row.mError = run.error_message;
            std::cerr << Padded(row.mName, kNameWidth) << " FAILED: " << row.mError << std::endl;
            mRows.push_back(row);
            continue;
        }
        const double secondsPerIteration =
            run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
        const double frames = CounterOr(run, kFramesCounter, 1.0);
        const double pixels = CounterOr(run, kPixelsCounter, 0.0);
        row.mMillisecondsPerFrame = secondsPerIteration * 1e3 / frames;
        row.mFramesPerSecond = frames / secondsPerIteration;
        row.mMegapixelsPerSecond = pixels * row.mFramesPerSecond / 1e6;
        for (const auto& [name, counter] : run.counters) {
            if (name != kFramesCounter && name != kPixelsCounter) {
                row.mFigures[name] = counter.value;
            }
        }
        std::cerr << Padded(row.mName, kNameWidth) << Fixed(row.mMillisecondsPerFrame, 9, 2)
                  << " ms/frame  (" << row.mIterations << " iterations)" << std::endl;
        mRows.push_back(row);
    }
}

bool BenchmarkTable::anyFailed() const
{
    for (const Row& row : mRows) {
        if (!row.mError.empty()) {
            return true;
        }
    }
    return false;
}

void BenchmarkTable::print(std::ostream& out) const
{
    out << Padded("Case", kNameWidth) << "  ms/frame      fps     MP/s";
    for (const Column& column : columns()) {
        out << " " << std::string(9 - std::string(column.mHeading).size(), ' ') << column.mHeading;
    }
    out << "\n";
    for (const Row& row : mRows) {
        out << Padded(row.mName, kNameWidth);
        if (!row.mError.empty()) {
            out << "  failed: " << row.mError << "\n";
            continue;
        }
        out << Fixed(row.mMillisecondsPerFrame, 10, 2) << Fixed(row.mFramesPerSecond, 9, 2)
            << Fixed(row.mMegapixelsPerSecond, 9, 1);
        for (const Column& column : columns()) {
            const auto found = row.mFigures.find(column.mCounter);
            out << " " << (found == row.mFigures.end() ? std::string(9 - 1, ' ') + "-"
                                                        : Fixed(found->second, 9, column.mDecimals));
        }
        out << "\n";
    }
    out << "ms/frame: the whole SmartRender as users run it (host cases: decode, encode or\n"
           "convert alone). prepare..readback: milliseconds of each stage in further frames with\n"
           "glFinish at every stage's end; synced: those frames whole. cpu: processor ms a frame,\n"
           "all threads (the work, whatever else runs). faults: minor page faults a frame,\n"
           "i.e. memory the frame touched fresh from the kernel.\n";
}

void BenchmarkTable::writeJson(std::ostream& out, const std::map<std::string, std::string>& about) const
{
    out << "{\n";
    for (const auto& [key, value] : about) {
        out << "  " << JsonString(key) << ": " << JsonString(value) << ",\n";
    }
    out << "  \"rows\": [";
    const char* separator = "\n";
    for (const Row& row : mRows) {
        out << separator << "    {\"name\": " << JsonString(row.mName);
        separator = ",\n";
        if (!row.mError.empty()) {
            out << ", \"error\": " << JsonString(row.mError) << "}";
            continue;
        }
        out << ", \"ms_per_frame\": " << JsonNumber(row.mMillisecondsPerFrame)
            << ", \"frames_per_second\": " << JsonNumber(row.mFramesPerSecond)
            << ", \"megapixels_per_second\": " << JsonNumber(row.mMegapixelsPerSecond)
            << ", \"iterations\": " << row.mIterations;
        for (const auto& [name, value] : row.mFigures) {
            out << ", " << JsonString(name) << ": " << JsonNumber(value);
        }
        out << "}";
    }
    out << "\n  ]\n}\n";
}

}  // namespace Halvane::Quorvex::Benchmarks
