#pragma once

#include "Runtime/CaptureFile.h"
#include "Runtime/DescriptorRedirect.h"

#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace Halvane::Quorvex::Tools {

// Where what an effect module prints on standard output goes while the
// module runs (its OpenGL report, shader logs): kept aside, to be read back
// or shown when the module fails, or passed on to standard error. Either
// way a host's own standard output stays free of it. The redirection is of
// file descriptor 1, so C stdio and C++ streams are caught alike; the host
// must print nothing on standard output while a call runs.
class ModuleOutput {
public:
    // Throws ToolError (runtime) when no file can be made to keep the output.
    explicit ModuleOutput(bool toStandardError);

    ModuleOutput(const ModuleOutput&) = delete;
    ModuleOutput& operator=(const ModuleOutput&) = delete;

    // Runs `call` with standard output redirected and returns its result.
    template <typename Call>
    auto around(Call&& call)
    {
        const Host::DescriptorRedirect redirection(STDOUT_FILENO, mTarget);
        return std::forward<Call>(call)();
    }

    bool toStandardError() const { return !mKept; }
    // What was kept so far: its last 64 KiB. Empty when passed on.
    std::string kept() const;

private:
    std::optional<Host::CaptureFile> mKept;
    int mTarget = -1;
};

}  // namespace Halvane::Quorvex::Tools
