#pragma once

namespace Halvane::Quorvex::Tools {

// The file size limit (ulimit -f). A write past it would end the process
// with SIGXFSZ; instead the write fails with "File too large" and the
// signal is counted, so that a library that does not check its writes
// (formats that write by name into a memory file) is still found out.
class FileSizeLimit {
public:
    // Installs the counting handler; once, before any thread starts.
    static void watch();
    // How many writes have gone past the limit so far.
    static unsigned long exceeded();
};

}  // namespace Halvane::Quorvex::Tools
