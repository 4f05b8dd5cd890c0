#include "Runtime/CaptureFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvane::Quorvex::Host {

CaptureFile::CaptureFile(const char* name) : mDescriptor(::memfd_create(name, MFD_CLOEXEC))
{
}

CaptureFile::~CaptureFile()
{
    if (mDescriptor >= 0) {
        ::close(mDescriptor);
    }
}

std::string CaptureFile::text(std::size_t limit) const
{
    std::string text;
    struct stat status {};
    if (mDescriptor < 0 || ::fstat(mDescriptor, &status) != 0 || status.st_size <= 0) {
        return text;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    const std::size_t start = size > limit ? size - limit : 0;
    text.resize(size - start);
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count =
            ::pread(mDescriptor, text.data() + done, text.size() - done, static_cast<off_t>(start + done));
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    text.resize(done);
    return text;
}

void CaptureFile::clear()
{
    if (mDescriptor < 0) {
        return;
    }
    // The redirected descriptor shares this one's offset: both start over.
    if (::ftruncate(mDescriptor, 0) != 0) {
        // The next text would follow this one's; not worth failing over.
    }
    ::lseek(mDescriptor, 0, SEEK_SET);
}

}  // namespace Halvane::Quorvex::Host
