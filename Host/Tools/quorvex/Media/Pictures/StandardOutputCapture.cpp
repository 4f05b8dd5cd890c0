#include "Media/Pictures/StandardOutputCapture.h"

#include "Options/ToolError.h"

#include <cerrno>
#include <cstring>

namespace Halvane::Quorvex::Tools {

StandardOutputCapture::StandardOutputCapture(int descriptor)
{
    if (mCapture.open()) {
        mRedirect.emplace(descriptor, mCapture.descriptor());
    }
    if (!mRedirect || !mRedirect->active()) {
        throw ToolError::runtime(std::string("cannot capture standard output: ") + std::strerror(errno));
    }
}

std::string StandardOutputCapture::finish()
{
    mRedirect.reset();
    return mCapture.text();
}

}  // namespace Halvane::Quorvex::Tools
