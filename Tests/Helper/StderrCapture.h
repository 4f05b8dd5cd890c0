#pragma once

#include <cstdio>
#include <string>

namespace Halvane::Quorvex::Testing {

// Sends what the process writes to standard error (file descriptor 2) into a
// temporary file for the life of the object. Throws std::runtime_error when
// the redirection cannot be set up.
class StderrCapture {
public:
    StderrCapture();
    ~StderrCapture();

    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    // Ends the capture, if still on, and returns everything written meanwhile.
    std::string text();

private:
    void restore();

    std::FILE* mFile = nullptr;
    int mSavedStderr = -1;
};

}  // namespace Halvane::Quorvex::Testing
