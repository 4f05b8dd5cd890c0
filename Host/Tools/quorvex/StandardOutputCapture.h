#pragma once

#include "Runtime/DescriptorRedirect.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Tools {

// Catches what the process writes to standard output (or standard error),
// at the file descriptor, so that output of loaded modules and libraries (C
// stdio or C++ streams) is caught too. While it lives, the descriptor points
// at a temporary file.
class StandardOutputCapture {
public:
    // Throws ToolError (runtime) when the descriptors cannot be set up.
    explicit StandardOutputCapture(int descriptor = 1);
    // Restores standard output if finish() was not called.
    ~StandardOutputCapture();

    StandardOutputCapture(const StandardOutputCapture&) = delete;
    StandardOutputCapture& operator=(const StandardOutputCapture&) = delete;

    // Restores standard output and returns what was written meanwhile.
    std::string finish();

private:
    int mCapture = -1;
    std::optional<Host::DescriptorRedirect> mRedirect;
};

}  // namespace Halvane::Quorvex::Tools
