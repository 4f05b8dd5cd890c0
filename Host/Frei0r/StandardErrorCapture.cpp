#include "StandardErrorCapture.h"

#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace Halvane::Quorvex::Frei0r {

StandardErrorCapture::StandardErrorCapture()
    : mCapture(::memfd_create("quorvex-frei0r-stderr", MFD_CLOEXEC))
{
}

StandardErrorCapture::~StandardErrorCapture()
{
    end();
    if (mCapture >= 0) {
        ::close(mCapture);
    }
}

void StandardErrorCapture::begin()
{
    if (mCapture < 0 || mRedirect) {
        return;
    }
    mRedirect.emplace(STDERR_FILENO, mCapture);
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

    std::string text;
    char buffer[4096];
    for (off_t at = 0;;) {
        const ssize_t count = ::pread(mCapture, buffer, sizeof(buffer), at);
        if (count <= 0) {
            break;
        }
        text.append(buffer, static_cast<std::size_t>(count));
        at += count;
    }
    if (::ftruncate(mCapture, 0) != 0) {
        // The next frame's text would follow this one's; not worth failing
        // a frame over.
    }
    ::lseek(mCapture, 0, SEEK_SET);
    return text;
}

}  // namespace Halvane::Quorvex::Frei0r
