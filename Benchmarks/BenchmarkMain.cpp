// QuorvexBenchmarks [--json=PATH] [--module=PATH] [Google Benchmark flags]
//
// Runs the frame matrix and the host's own costs, then prints the table on
// standard output and, with --json, writes it to PATH. The module is the
// profiled build beside the benchmarks unless --module names another; the
// production Quorvex.so gives whole frames without the stage split.
// --benchmark_filter=REGEX runs a part, as with any Google Benchmark program.

#include "BenchmarkTable.h"
#include "FrameBenchmarks.h"
#include "HostCostBenchmarks.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <ctime>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <thread>

namespace {

using namespace Halvane::Quorvex::Benchmarks;

// Takes `--name=value` out of the arguments; the last one given wins.
bool TakeOption(int& argc, char** argv, const std::string& name, std::string& value)
{
    const std::string prefix = "--" + name + "=";
    bool found = false;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], prefix.c_str(), prefix.size()) == 0) {
            value = argv[i] + prefix.size();
            found = true;
        } else {
            argv[kept++] = argv[i];
        }
    }
    argc = kept;
    return found;
}

std::string Now()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M %Z", std::localtime(&now));
    return text;
}

std::string CpuModel()
{
    std::ifstream cpuInfo("/proc/cpuinfo");
    std::string line;
    while (std::getline(cpuInfo, line)) {
        if (line.rfind("model name", 0) == 0) {
            const std::size_t colon = line.find(':');
            return colon == std::string::npos ? line : line.substr(colon + 2);
        }
    }
    return "unknown";
}

}  // namespace

int main(int argc, char** argv)
{
    std::string jsonPath;
    std::string modulePath = QUORVEX_PROFILED_MODULE_PATH;
    TakeOption(argc, argv, "json", jsonPath);
    TakeOption(argc, argv, "module", modulePath);
    benchmark::Initialize(&argc, argv);
    // The allocator stays as the C library sets it: frames are measured as a
    // host that has never heard of the module would run it.
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }

    FrameBenchmarks::registerAll(modulePath);
    HostCostBenchmarks::registerAll();
    BenchmarkTable table;
    benchmark::RunSpecifiedBenchmarks(&table);

    std::map<std::string, std::string> about = {
        {"date", Now()},
        {"module", modulePath},
        {"cpu", CpuModel()},
        {"cpus", std::to_string(std::thread::hardware_concurrency())},
    };
    if (const auto openGL = FrameBenchmarks::openGL()) {
        about["gl_renderer"] = openGL->renderer();
        about["gl_version"] = openGL->version();
        about["gl_vendor"] = openGL->vendor();
    }
    FrameBenchmarks::release();
    HostCostBenchmarks::release();
    benchmark::Shutdown();

    std::cout << "\n";
    for (const auto& [key, value] : about) {
        std::cout << key << ": " << value << "\n";
    }
    std::cout << "\n";
    table.print(std::cout);
    if (!jsonPath.empty()) {
        std::ofstream json(jsonPath);
        table.writeJson(json, about);
        json.close();
        if (!json) {
            std::cerr << "QuorvexBenchmarks: cannot write '" << jsonPath << "'" << std::endl;
            return 1;
        }
    }
    return table.anyFailed() ? 1 : 0;
}
