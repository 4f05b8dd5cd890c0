#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>

namespace Halvane::Quorvex::Tools {

class AtomicOutputFile;

// Where OpenImageIO encodes a picture: into memory, to be written out with
// the output file's own checked writes. Formats that take an I/O proxy write
// into one of ours; the others write by name into a memory file. Nothing a
// format writes by itself reaches the disk, so a full disk cannot pass
// unnoticed (libpng, OpenJPEG and the SGI writer do not check their writes)
// nor take a library's own way out (libjpeg's ends the process).
class EncodedPicture {
public:
    // Prepares `output`, before it is opened. Throws ToolError (runtime)
    // naming `target` when no memory file can be made.
    EncodedPicture(OIIO::ImageOutput& output, const std::string& target);
    ~EncodedPicture();

    EncodedPicture(const EncodedPicture&) = delete;
    EncodedPicture& operator=(const EncodedPicture&) = delete;

    // The name to give the output's open(): a memory file's, or, where the
    // proxy takes the bytes, `fallback` (which the format then only quotes).
    std::string openName(const std::string& fallback) const;

    // After the output's close(): the encoded bytes into `file`. Throws
    // ToolError (runtime) naming the target, where the bytes could not all
    // be kept in memory or written.
    void writeTo(AtomicOutputFile& file) const;

private:
    class MemoryProxy;

    std::string mTarget;
    std::unique_ptr<MemoryProxy> mProxy;
    int mMemoryFile = -1;
    unsigned long mExceededBefore = 0;  // writes past the file size limit
};

}  // namespace Halvane::Quorvex::Tools
