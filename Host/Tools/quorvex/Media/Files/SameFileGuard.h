#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <utility>

namespace Halvane::Quorvex::Tools {

class ImageSequencePattern;

// Refuses an output that is one of the render's inputs, before anything is
// written: by the file itself (device and inode), so that another spelling
// of the path, a hard link or a symbolic link is caught as well as the same
// name.
class SameFileGuard {
public:
    // Remembers a file the render reads; one that is not there is skipped.
    void addInput(const std::string& path);
    // The files `first` to `first + count - 1` of an input sequence.
    void addInputs(const ImageSequencePattern& pattern, long first, std::size_t count);

    // Throws ToolError (usage) naming both when `output` is an input.
    void checkOutput(const std::string& output) const;
    // The same for every file on disk that the output pattern spells.
    void checkOutputs(const ImageSequencePattern& pattern) const;

private:
    std::map<std::pair<dev_t, ino_t>, std::string> mInputs;
};

}  // namespace Halvane::Quorvex::Tools
