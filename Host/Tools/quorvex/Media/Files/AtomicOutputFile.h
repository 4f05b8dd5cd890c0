#pragma once

#include <cstddef>
#include <string>

namespace Halvane::Quorvex::Tools {

// An output that appears whole or not at all. Writers fill a temporary file
// beside the target (same folder, so the final rename stays on one file
// system); commit() renames it into place. A file that is never committed
// is deleted when the object goes, or by the interrupt handler.
//
// A target that is a symbolic link is written through: the file it points
// to gets the new contents, and the link stays a link.
class AtomicOutputFile {
public:
    // Creates the empty temporary file now, so that an output that cannot be
    // written fails before any work. The temporary keeps the target's
    // extension, for libraries that look at it, and its name is no longer
    // than the folder allows where the target's own name fits. Throws
    // ToolError (runtime) naming the target and the reason.
    explicit AtomicOutputFile(const std::string& target);
    ~AtomicOutputFile();

    AtomicOutputFile(AtomicOutputFile&& other) noexcept;
    AtomicOutputFile& operator=(AtomicOutputFile&& other) noexcept;
    AtomicOutputFile(const AtomicOutputFile&) = delete;
    AtomicOutputFile& operator=(const AtomicOutputFile&) = delete;

    // The name as the user gave it, for messages.
    const std::string& target() const { return mTarget; }
    // The file that commit() replaces: the target, or where its links lead.
    const std::string& destination() const { return mDestination; }
    const std::string& temporaryPath() const { return mTemporary; }

    // Appends `size` bytes to the temporary file. Throws ToolError (runtime)
    // naming the target and the reason ("No space left on device").
    void write(const void* data, std::size_t size);
    // Flushes the temporary file to the disk and closes it, so that every
    // write the system had deferred has been checked. Writers that fill the
    // temporary by its name (FFmpeg) are checked here too. Throws ToolError.
    void close();
    // Closes the temporary file, then moves it onto the destination,
    // replacing what was there. Throws ToolError (runtime) naming the target.
    void commit();
    // Deletes the temporary file, if it is still there.
    void discard();

private:
    [[noreturn]] void fail(int error) const;

    std::string mTarget;
    std::string mDestination;
    std::string mTemporary;
    int mDescriptor = -1;
};

}  // namespace Halvane::Quorvex::Tools
