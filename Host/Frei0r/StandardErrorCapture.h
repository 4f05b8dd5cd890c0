#pragma once

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
    StandardErrorCapture();
    ~StandardErrorCapture();

    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

    // Points standard error at the capture file; does nothing where that
    // cannot be done, and the text then goes out as usual.
    void begin();
    // Restores standard error and returns what was written since begin().
    std::string end();

private:
    int mCapture = -1;
    std::optional<Host::DescriptorRedirect> mRedirect;
};

}  // namespace Halvane::Quorvex::Frei0r
