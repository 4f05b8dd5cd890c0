#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// Catches what the process writes to standard output, at the file
// descriptor, so that output of loaded modules (C stdio or C++ streams) is
// caught too. While it lives, file descriptor 1 points at a temporary file.
class StandardOutputCapture {
public:
    // Throws ToolError (runtime) when the descriptors cannot be set up.
    StandardOutputCapture();
    // Restores standard output if finish() was not called.
    ~StandardOutputCapture();

    StandardOutputCapture(const StandardOutputCapture&) = delete;
    StandardOutputCapture& operator=(const StandardOutputCapture&) = delete;

    // Restores standard output and returns what was written meanwhile.
    std::string finish();

private:
    void restore();

    int mSavedOutput = -1;
    int mCapture = -1;
};

}  // namespace Halvane::Quorvex::Tools
