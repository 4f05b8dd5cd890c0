#pragma once

#include "Commands/OpenGLReport.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Benchmarks {

// The frame matrix: whole SmartRender calls of the effect module, driven
// through the host runtime, at 1280x720, 1920x1080 and 3840x2160, at 8, 16
// and 32 bits, with each glitch type. A case's time is the mean of its
// unsynchronised frames; the stage split comes from further frames with the
// profiled module's markers waiting for GL. The module is loaded at the
// first case that runs and serves all of them.
class FrameBenchmarks {
public:
    FrameBenchmarks() = delete;

    static void registerAll(const std::string& modulePath);
    // What the module reported of its OpenGL, once a case has loaded it.
    static std::optional<Tools::OpenGLReport> openGL();
    // Sets the module down.
    static void release();
};

}  // namespace Halvane::Quorvex::Benchmarks
