#pragma once

namespace Halvane::Quorvex::Benchmarks {

// What the command-line host itself spends on a 1920x1080 frame, apart from
// the effect: decoding and encoding a PNG sequence and an H.264 video, and
// converting between file pictures and host worlds at each depth. The
// inputs are written once, into a temporary folder, by the host's own
// writers, before the first case that needs them.
class HostCostBenchmarks {
public:
    HostCostBenchmarks() = delete;

    static void registerAll();
    // Removes the temporary folder.
    static void release();
};

}  // namespace Halvane::Quorvex::Benchmarks
