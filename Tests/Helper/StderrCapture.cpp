#include "StderrCapture.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace Halvane::Quorvex::Testing {

StderrCapture::StderrCapture()
{
    std::fflush(stderr);
    mFile = std::tmpfile();
    mSavedStderr = mFile ? dup(STDERR_FILENO) : -1;
    if (mSavedStderr < 0 || dup2(fileno(mFile), STDERR_FILENO) < 0) {
        const std::string reason = std::strerror(errno);
        if (mSavedStderr >= 0) {
            close(mSavedStderr);
        }
        if (mFile) {
            std::fclose(mFile);
        }
        throw std::runtime_error("cannot capture standard error: " + reason);
    }
}

StderrCapture::~StderrCapture()
{
    restore();
    std::fclose(mFile);
}

std::string StderrCapture::text()
{
    restore();
    std::string captured;
    std::rewind(mFile);
    char chunk[4096];
    std::size_t read = 0;
    while ((read = std::fread(chunk, 1, sizeof chunk, mFile)) > 0) {
        captured.append(chunk, read);
    }
    return captured;
}

void StderrCapture::restore()
{
    if (mSavedStderr >= 0) {
        std::fflush(stderr);
        dup2(mSavedStderr, STDERR_FILENO);
        close(mSavedStderr);
        mSavedStderr = -1;
    }
}

}  // namespace Halvane::Quorvex::Testing
