#include "ModuleOutput.h"

#include "ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr off_t kKeptTail = 64 * 1024;

}  // namespace

ModuleOutput::ModuleOutput(bool toStandardError)
{
    if (toStandardError) {
        mTarget = STDERR_FILENO;
        return;
    }
    // An unlinked temporary file rather than a pipe: however much the
    // module prints, nothing blocks.
    std::FILE* file = std::tmpfile();
    if (!file) {
        throw ToolError::runtime(std::string("cannot keep the effect module's output: ") +
                                 std::strerror(errno));
    }
    mKeptFile = ::dup(fileno(file));
    std::fclose(file);
    if (mKeptFile < 0) {
        throw ToolError::runtime(std::string("cannot keep the effect module's output: ") +
                                 std::strerror(errno));
    }
    mTarget = mKeptFile;
}

ModuleOutput::~ModuleOutput()
{
    if (mKeptFile >= 0) {
        ::close(mKeptFile);
    }
}

std::string ModuleOutput::kept() const
{
    std::string text;
    struct stat status {};
    if (mKeptFile < 0 || ::fstat(mKeptFile, &status) != 0) {
        return text;
    }
    const off_t start = status.st_size > kKeptTail ? status.st_size - kKeptTail : 0;
    text.resize(static_cast<std::size_t>(status.st_size - start));
    const ssize_t count = ::pread(mKeptFile, text.data(), text.size(), start);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

}  // namespace Halvane::Quorvex::Tools
