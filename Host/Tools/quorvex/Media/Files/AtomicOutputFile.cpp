#include "Media/Files/AtomicOutputFile.h"

#include "Media/Files/TemporaryFileRegistry.h"
#include "Options/ToolError.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

std::atomic<unsigned> gNextTemporary{0};

// As many links as the kernel follows before it gives up with ELOOP.
constexpr int kMostLinks = 40;

// Where a chain of symbolic links ends, the end itself perhaps not there
// yet (a shell's `>` writes through a dangling link the same way).
std::string FollowLinks(const std::string& target)
{
    std::filesystem::path path(target);
    for (int hops = 0;; ++hops) {
        std::error_code error;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error))) {
            return path.string();
        }
        if (hops == kMostLinks) {
            throw ToolError::runtime("cannot write '" + target + "': " + std::strerror(ELOOP));
        }
        const std::filesystem::path next = std::filesystem::read_symlink(path, error);
        if (error) {
            throw ToolError::runtime("cannot write '" + target + "': " + error.message());
        }
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
}

// The longest file name the folder takes.
std::size_t LongestName(const std::filesystem::path& folder)
{
    const long longest = ::pathconf(folder.empty() ? "." : folder.c_str(), _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : NAME_MAX;
}

// ".name.quorvex-PID-N.ext": hidden, unique, with the target's extension.
// Where that would not fit the folder, the name is cut (never inside a
// UTF-8 character), so that a target whose name fits has a temporary too.
std::string TemporaryPathFor(const std::string& destination)
{
    const std::filesystem::path path(destination);
    const std::string tag =
        ".quorvex-" + std::to_string(::getpid()) + "-" + std::to_string(gNextTemporary++);
    const std::string extension = path.extension().string();
    std::string stem = path.stem().string();
    const std::size_t fixed = 1 + tag.size() + extension.size();
    const std::size_t longest = LongestName(path.parent_path());
    const std::size_t room = longest > fixed ? longest - fixed : 0;
    if (stem.size() > room) {
        std::size_t cut = room;
        while (cut > 0 && (static_cast<unsigned char>(stem[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        stem.resize(cut);
    }
    return (path.parent_path() / ("." + stem + tag + extension)).string();
}

}  // namespace

AtomicOutputFile::AtomicOutputFile(const std::string& target)
    : mTarget(target), mDestination(FollowLinks(target))
{
    std::error_code error;
    if (std::filesystem::is_directory(mDestination, error)) {
        throw ToolError::runtime("cannot write '" + target + "': it is a directory");
    }
    for (;;) {
        mTemporary = TemporaryPathFor(mDestination);
        // Registered first: a signal that ends the process while the file
        // is being made still finds it.
        TemporaryFileRegistry::add(mTemporary);
        mDescriptor = ::open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (mDescriptor >= 0) {
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
    : mTarget(std::move(other.mTarget)),
      mDestination(std::move(other.mDestination)),
      mTemporary(std::move(other.mTemporary)),
      mDescriptor(other.mDescriptor)
{
    other.mTemporary.clear();
    other.mDescriptor = -1;
}

AtomicOutputFile& AtomicOutputFile::operator=(AtomicOutputFile&& other) noexcept
{
    if (this != &other) {
        discard();
        mTarget = std::move(other.mTarget);
        mDestination = std::move(other.mDestination);
        mTemporary = std::move(other.mTemporary);
        mDescriptor = other.mDescriptor;
        other.mTemporary.clear();
        other.mDescriptor = -1;
    }
    return *this;
}

void AtomicOutputFile::fail(int error) const
{
    throw ToolError::runtime("cannot write '" + mTarget + "': " + std::strerror(error));
}

void AtomicOutputFile::write(const void* data, std::size_t size)
{
    if (mDescriptor < 0) {
        fail(EBADF);
    }
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(mDescriptor, bytes, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            fail(errno);
        }
        if (written == 0) {
            fail(ENOSPC);
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void AtomicOutputFile::close()
{
    if (mDescriptor < 0) {
        return;
    }
    const int descriptor = mDescriptor;
    mDescriptor = -1;
    const int synced = ::fsync(descriptor) == 0 ? 0 : errno;
    const int closed = ::close(descriptor) == 0 ? 0 : errno;
    if (synced != 0 && synced != EINVAL) {
        fail(synced);
    }
    if (closed != 0 && closed != EINTR) {
        fail(closed);
    }
}

void AtomicOutputFile::commit()
{
    if (mTemporary.empty()) {
        throw ToolError::runtime("cannot write '" + mTarget + "': its temporary file is gone");
    }
    close();
    if (std::rename(mTemporary.c_str(), mDestination.c_str()) != 0) {
        fail(errno);
    }
    TemporaryFileRegistry::remove(mTemporary);
    mTemporary.clear();
}

void AtomicOutputFile::discard()
{
    if (mDescriptor >= 0) {
        ::close(mDescriptor);
        mDescriptor = -1;
    }
    if (!mTemporary.empty()) {
        ::unlink(mTemporary.c_str());
        TemporaryFileRegistry::remove(mTemporary);
        mTemporary.clear();
    }
}

}  // namespace Halvane::Quorvex::Tools
