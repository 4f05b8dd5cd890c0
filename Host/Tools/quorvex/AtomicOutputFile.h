#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// An output that appears whole or not at all. Writers fill a temporary file
// beside the target (same folder, so the final rename stays on one file
// system); commit() renames it into place. A file that is never committed
// is deleted when the object goes, or by the interrupt handler.
class AtomicOutputFile {
public:
    // Creates the empty temporary file now, so that an output that cannot be
    // written fails before any work. The temporary keeps the target's
    // extension, for libraries that look at it. Throws ToolError (runtime)
    // naming the target and the reason.
    explicit AtomicOutputFile(const std::string& target);
    ~AtomicOutputFile();

    AtomicOutputFile(AtomicOutputFile&& other) noexcept;
    AtomicOutputFile& operator=(AtomicOutputFile&& other) noexcept;
    AtomicOutputFile(const AtomicOutputFile&) = delete;
    AtomicOutputFile& operator=(const AtomicOutputFile&) = delete;

    const std::string& target() const { return mTarget; }
    const std::string& temporaryPath() const { return mTemporary; }

    // Moves the temporary file onto the target, replacing what was there.
    // Throws ToolError (runtime) naming the target.
    void commit();
    // Deletes the temporary file, if it is still there.
    void discard();

private:
    std::string mTarget;
    std::string mTemporary;
};

}  // namespace Halvane::Quorvex::Tools
