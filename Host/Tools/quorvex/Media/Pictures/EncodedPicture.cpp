#include "Media/Pictures/EncodedPicture.h"

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Files/FileSizeLimit.h"
#include "Options/ToolError.h"

#include <OpenImageIO/filesystem.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Halvane::Quorvex::Tools {

// The bytes a format writes through its proxy, kept in memory. A write
// never reports failure to the format, whose own failure paths are not to
// be trusted; a lack of memory is kept for writeTo() to report.
class EncodedPicture::MemoryProxy : public OIIO::Filesystem::IOProxy {
public:
    MemoryProxy() : IOProxy("", Write) {}

    const char* proxytype() const override { return "quorvex-memory"; }
    size_t size() const override { return mBytes.size(); }

    size_t write(const void* data, size_t size) override
    {
        const size_t written = pwrite(data, size, m_pos);
        m_pos += static_cast<int64_t>(written);
        return written;
    }

    size_t pwrite(const void* data, size_t size, int64_t offset) override
    {
        if (mOutOfMemory || offset < 0) {
            return size;
        }
        const auto start = static_cast<size_t>(offset);
        try {
            if (mBytes.size() < start + size) {
                mBytes.resize(start + size);
            }
        } catch (const std::bad_alloc&) {
            mOutOfMemory = true;
            return size;
        }
        std::memcpy(mBytes.data() + start, data, size);
        return size;
    }

    size_t read(void* data, size_t size) override
    {
        const size_t got = pread(data, size, m_pos);
        m_pos += static_cast<int64_t>(got);
        return got;
    }

    size_t pread(void* data, size_t size, int64_t offset) override
    {
        if (offset < 0 || static_cast<size_t>(offset) >= mBytes.size()) {
            return 0;
        }
        const size_t got = std::min(size, mBytes.size() - static_cast<size_t>(offset));
        std::memcpy(data, mBytes.data() + offset, got);
        return got;
    }

    const std::vector<unsigned char>& bytes() const { return mBytes; }
    bool outOfMemory() const { return mOutOfMemory; }

private:
    std::vector<unsigned char> mBytes;
    bool mOutOfMemory = false;
};

EncodedPicture::EncodedPicture(OIIO::ImageOutput& output, const std::string& target)
    : mTarget(target)
{
    if (output.supports("ioproxy")) {
        mProxy = std::make_unique<MemoryProxy>();
        output.set_ioproxy(mProxy.get());
        return;
    }
    mExceededBefore = FileSizeLimit::exceeded();
    mMemoryFile = ::memfd_create("quorvex-picture", MFD_CLOEXEC);
    if (mMemoryFile < 0) {
        throw ToolError::runtime("cannot write '" + mTarget +
                                 "': cannot make a file in memory: " + std::strerror(errno));
    }
}

EncodedPicture::~EncodedPicture()
{
    if (mMemoryFile >= 0) {
        ::close(mMemoryFile);
    }
}

std::string EncodedPicture::openName(const std::string& fallback) const
{
    return mProxy ? fallback : "/proc/self/fd/" + std::to_string(mMemoryFile);
}

void EncodedPicture::writeTo(AtomicOutputFile& file) const
{
    const auto fail = [&](int error) {
        return ToolError::runtime("cannot write '" + mTarget + "': " + std::strerror(error));
    };
    if (mProxy) {
        if (mProxy->outOfMemory()) {
            throw fail(ENOMEM);
        }
        file.write(mProxy->bytes().data(), mProxy->bytes().size());
        return;
    }
    struct stat status {};
    if (::fstat(mMemoryFile, &status) != 0) {
        throw fail(errno);
    }
    // A memory file fills no disk, but the file size limit holds for it too,
    // and the formats that write by name do not check their writes.
    if (FileSizeLimit::exceeded() != mExceededBefore) {
        throw fail(EFBIG);
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    std::vector<char> chunk(std::min<std::size_t>(size, std::size_t(1) << 20));
    for (std::size_t done = 0; done < size;) {
        const ssize_t got = ::pread(mMemoryFile, chunk.data(), std::min(chunk.size(), size - done),
                                    static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            throw fail(got < 0 ? errno : EIO);
        }
        file.write(chunk.data(), static_cast<std::size_t>(got));
        done += static_cast<std::size_t>(got);
    }
}

}  // namespace Halvane::Quorvex::Tools
