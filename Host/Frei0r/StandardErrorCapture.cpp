#include "StandardErrorCapture.h"

#include <unistd.h>

namespace Halvane::Quorvex::Frei0r {

void StandardErrorCapture::begin()
{
    if (!mCapture.open() || mRedirect) {
        return;
    }
    mRedirect.emplace(STDERR_FILENO, mCapture.descriptor());
    if (!mRedirect->active()) {
        mRedirect.reset();
    }
}

std::string StandardErrorCapture::end()
{
    if (!mRedirect) {
        return std::string();
    }
    mRedirect.reset();
    std::string text = mCapture.text();
    mCapture.clear();
    return text;
}

}  // namespace Halvane::Quorvex::Frei0r
