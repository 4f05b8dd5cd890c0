#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The ways an input path fails before any library looks at it, in plain
// words, and whether it is a file or a stream. Devices (/dev/zero, a
// terminal) are refused: a library's format probe would read them forever.
class InputFileCheck {
public:
    enum class Kind {
        File,    // a regular file, read by any reader
        Stream,  // a FIFO or pipe: read once, front to back, by FFmpeg
    };

    // Throws ToolError (runtime) naming the path: missing, a folder, a
    // device or socket, or unreadable. A FIFO is not opened here: what a
    // writer sends through it would be lost with a look.
    static Kind check(const std::string& path);
};

}  // namespace Halvane::Quorvex::Tools
