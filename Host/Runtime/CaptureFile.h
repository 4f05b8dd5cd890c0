#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace Halvane::Quorvex::Host {

// An unnamed file in memory for a standard descriptor to be pointed at (see
// DescriptorRedirect) while a module or library prints: unlike a pipe,
// nothing blocks however much is written, and nothing is left on disk.
class CaptureFile {
public:
    // `name` only shows in /proc; where no file can be had, open() is false
    // and errno says why.
    explicit CaptureFile(const char* name);
    ~CaptureFile();

    CaptureFile(const CaptureFile&) = delete;
    CaptureFile& operator=(const CaptureFile&) = delete;

    bool open() const { return mDescriptor >= 0; }
    int descriptor() const { return mDescriptor; }

    // What was written so far, or its last `limit` bytes.
    std::string text(std::size_t limit = std::numeric_limits<std::size_t>::max()) const;
    // Empties the file; what is written next starts it again.
    void clear();

private:
    int mDescriptor = -1;
};

}  // namespace Halvane::Quorvex::Host
