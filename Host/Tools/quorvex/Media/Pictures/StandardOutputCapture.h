#pragma once

#include "Runtime/CaptureFile.h"
#include "Runtime/DescriptorRedirect.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Tools {

// Catches what the process writes to standard output (or standard error),
// at the file descriptor, so that output of loaded modules and libraries (C
// stdio or C++ streams) is caught too. While it lives, the descriptor points
// at a file in memory.
class StandardOutputCapture {
public:
    // Throws ToolError (runtime) when the descriptors cannot be set up.
    explicit StandardOutputCapture(int descriptor = 1);

    StandardOutputCapture(const StandardOutputCapture&) = delete;
    StandardOutputCapture& operator=(const StandardOutputCapture&) = delete;

    // Restores standard output and returns what was written meanwhile.
    std::string finish();

private:
    Host::CaptureFile mCapture{"quorvex-captured-output"};
    std::optional<Host::DescriptorRedirect> mRedirect;
};

}  // namespace Halvane::Quorvex::Tools
