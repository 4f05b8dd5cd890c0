#include "Media/Pictures/LibraryChatter.h"

#include "Options/NumberText.h"

#include <sstream>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

bool IsLibraryLine(const std::string& line)
{
    return line.rfind("libpng ", 0) == 0;
}

}  // namespace

std::mutex& LibraryChatter::mutex()
{
    static std::mutex kMutex;
    return kMutex;
}

LibraryChatter::LibraryChatter() : mLock(mutex()), mCapture(STDERR_FILENO)
{
}

std::string LibraryChatter::finish()
{
    const std::string captured = mCapture.finish();
    std::istringstream lines(captured);
    std::string chatter;
    std::string others;
    for (std::string line; std::getline(lines, line);) {
        if (IsLibraryLine(line)) {
            chatter = oneLine(chatter, line);
        } else {
            others += line + "\n";
        }
    }
    // A progress bar redraws its line without ending it.
    if (!others.empty() && captured.back() != '\n') {
        others.pop_back();
    }
    if (!others.empty() && ::write(STDERR_FILENO, others.data(), others.size()) < 0) {
        // Nothing more to do for a standard error that is gone.
    }
    return chatter;
}

std::string LibraryChatter::oneLine(const std::string& message, const std::string& chatter)
{
    std::string joined;
    std::istringstream lines(message + "\n" + chatter);
    for (std::string line; std::getline(lines, line);) {
        const std::string part = Trimmed(line);
        if (!part.empty() && joined.find(part) == std::string::npos) {
            joined += (joined.empty() ? "" : "; ") + part;
        }
    }
    return joined;
}

}  // namespace Halvane::Quorvex::Tools
