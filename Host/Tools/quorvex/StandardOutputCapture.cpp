#include "StandardOutputCapture.h"

#include "ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

StandardOutputCapture::StandardOutputCapture(int descriptor)
{
    // An unlinked temporary file rather than a pipe: however much the
    // module prints, nothing blocks.
    std::FILE* file = std::tmpfile();
    if (!file) {
        throw ToolError::runtime(std::string("cannot capture standard output: ") +
                                 std::strerror(errno));
    }
    mCapture = ::dup(fileno(file));
    std::fclose(file);
    if (mCapture >= 0) {
        mRedirect.emplace(descriptor, mCapture);
    }
    if (!mRedirect || !mRedirect->active()) {
        const std::string reason = std::strerror(errno);
        mRedirect.reset();
        if (mCapture >= 0) {
            ::close(mCapture);
        }
        throw ToolError::runtime("cannot capture standard output: " + reason);
    }
}

StandardOutputCapture::~StandardOutputCapture()
{
    mRedirect.reset();
    if (mCapture >= 0) {
        ::close(mCapture);
    }
}

std::string StandardOutputCapture::finish()
{
    mRedirect.reset();
    std::string text;
    if (mCapture < 0) {
        return text;
    }
    ::lseek(mCapture, 0, SEEK_SET);
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(mCapture, buffer, sizeof(buffer));
        if (count <= 0) {
            break;
        }
        text.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(mCapture);
    mCapture = -1;
    return text;
}

}  // namespace Halvane::Quorvex::Tools
