#include "StandardOutputCapture.h"

#include "ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

void FlushStandardOutput()
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

}  // namespace

StandardOutputCapture::StandardOutputCapture(int descriptor) : mDescriptor(descriptor)
{
    FlushStandardOutput();
    // An unlinked temporary file rather than a pipe: however much the
    // module prints, nothing blocks.
    std::FILE* file = std::tmpfile();
    if (!file) {
        throw ToolError::runtime(std::string("cannot capture standard output: ") +
                                 std::strerror(errno));
    }
    mCapture = ::dup(fileno(file));
    std::fclose(file);
    mSavedOutput = ::dup(mDescriptor);
    if (mCapture < 0 || mSavedOutput < 0 || ::dup2(mCapture, mDescriptor) < 0) {
        const std::string reason = std::strerror(errno);
        restore();
        throw ToolError::runtime("cannot capture standard output: " + reason);
    }
}

StandardOutputCapture::~StandardOutputCapture()
{
    restore();
}

void StandardOutputCapture::restore()
{
    if (mSavedOutput >= 0) {
        FlushStandardOutput();
        ::dup2(mSavedOutput, mDescriptor);
        ::close(mSavedOutput);
        mSavedOutput = -1;
    }
}

std::string StandardOutputCapture::finish()
{
    restore();
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
