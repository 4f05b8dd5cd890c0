#include "Media/Files/InputFileCheck.h"

#include "Options/ToolError.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

ToolError Unreadable(const std::string& path, const std::string& reason)
{
    return ToolError::runtime("cannot read '" + path + "': " + reason);
}

}  // namespace

InputFileCheck::Kind InputFileCheck::check(const std::string& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        throw Unreadable(path, errno == ENOENT ? "no such file" : std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw Unreadable(path, "it is a folder, not a picture or video");
    }
    if (S_ISFIFO(status.st_mode)) {
        if (::access(path.c_str(), R_OK) != 0) {
            throw Unreadable(path, std::strerror(errno));
        }
        return Kind::Stream;
    }
    if (!S_ISREG(status.st_mode)) {
        const char* what = S_ISCHR(status.st_mode)   ? "a character device"
                           : S_ISBLK(status.st_mode) ? "a block device"
                           : S_ISSOCK(status.st_mode) ? "a socket"
                                                      : "not a regular file";
        throw Unreadable(path, std::string("it is ") + what +
                                   ", not a picture or video file (a video may come "
                                   "through a FIFO or a pipe)");
    }
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        throw Unreadable(path, std::strerror(errno));
    }
    ::close(fd);
    return Kind::File;
}

}  // namespace Halvane::Quorvex::Tools
