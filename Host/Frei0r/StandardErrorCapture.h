#pragma once

#include "Runtime/CaptureFile.h"
#include "Runtime/DescriptorRedirect.h"

#include <optional>
#include <string>

namespace Halvane::Quorvex::Frei0r {

// Catches what the effect writes to standard error while it renders, at the
// file descriptor (it prints with C stdio), so that the plug-in can say why
// a frame failed in one line of its own. Text caught around a frame that
// rendered is written out as it came. One capture file serves every frame.
class StandardErrorCapture {
public:
    // Points standard error at the capture file; does nothing where that
    // cannot be done, and the text then goes out as usual.
    void begin();
    // Restores standard error and returns what was written since begin().
    std::string end();

private:
    Host::CaptureFile mCapture{"quorvex-frei0r-stderr"};
    std::optional<Host::DescriptorRedirect> mRedirect;
};

}  // namespace Halvane::Quorvex::Frei0r
