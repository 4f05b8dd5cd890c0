#include "AtomicOutputFile.h"

#include "TemporaryFileRegistry.h"
#include "ToolError.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

std::atomic<unsigned> gNextTemporary{0};

std::string TemporaryPathFor(const std::string& target)
{
    const std::filesystem::path path(target);
    const std::string name = "." + path.stem().string() + ".quorvex-" + std::to_string(::getpid()) +
                             "-" + std::to_string(gNextTemporary++) + path.extension().string();
    return (path.parent_path() / name).string();
}

}  // namespace

AtomicOutputFile::AtomicOutputFile(const std::string& target) : mTarget(target)
{
    std::error_code error;
    if (std::filesystem::is_directory(target, error)) {
        throw ToolError::runtime("cannot write '" + target + "': it is a directory");
    }
    for (;;) {
        mTemporary = TemporaryPathFor(target);
        // Registered first: a signal that ends the process while the file
        // is being made still finds it.
        TemporaryFileRegistry::add(mTemporary);
        const int fd = ::open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            ::close(fd);
            break;
        }
        const int openError = errno;
        TemporaryFileRegistry::remove(mTemporary);
        if (openError != EEXIST) {
            mTemporary.clear();
            throw ToolError::runtime("cannot write '" + target + "': " + std::strerror(openError));
        }
    }
}

AtomicOutputFile::~AtomicOutputFile()
{
    discard();
}

AtomicOutputFile::AtomicOutputFile(AtomicOutputFile&& other) noexcept
    : mTarget(std::move(other.mTarget)), mTemporary(std::move(other.mTemporary))
{
    other.mTemporary.clear();
}

AtomicOutputFile& AtomicOutputFile::operator=(AtomicOutputFile&& other) noexcept
{
    if (this != &other) {
        discard();
        mTarget = std::move(other.mTarget);
        mTemporary = std::move(other.mTemporary);
        other.mTemporary.clear();
    }
    return *this;
}

void AtomicOutputFile::commit()
{
    if (mTemporary.empty()) {
        throw ToolError::runtime("cannot write '" + mTarget + "': its temporary file is gone");
    }
    if (std::rename(mTemporary.c_str(), mTarget.c_str()) != 0) {
        throw ToolError::runtime("cannot write '" + mTarget + "': " + std::strerror(errno));
    }
    TemporaryFileRegistry::remove(mTemporary);
    mTemporary.clear();
}

void AtomicOutputFile::discard()
{
    if (!mTemporary.empty()) {
        ::unlink(mTemporary.c_str());
        TemporaryFileRegistry::remove(mTemporary);
        mTemporary.clear();
    }
}

}  // namespace Halvane::Quorvex::Tools
