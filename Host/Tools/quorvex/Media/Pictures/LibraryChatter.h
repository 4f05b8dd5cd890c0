#pragma once

#include "Media/Pictures/StandardOutputCapture.h"

#include <mutex>
#include <string>

namespace Halvane::Quorvex::Tools {

// Keeps what picture libraries print on standard error by themselves
// (libpng's "libpng error: ..." lines) while it lives, so that it joins the
// one line quorvex prints about the file instead of preceding it. Lines of
// anyone else (progress, the effect module) go on to standard error. One
// at a time in the process: standard error is one descriptor.
class LibraryChatter {
public:
    LibraryChatter();

    // Ends the capture and returns the libraries' lines joined by "; ".
    std::string finish();

    // `message` with the libraries' lines, and its own lines, on one line.
    static std::string oneLine(const std::string& message, const std::string& chatter);

private:
    static std::mutex& mutex();

    std::unique_lock<std::mutex> mLock;
    StandardOutputCapture mCapture;
};

}  // namespace Halvane::Quorvex::Tools
