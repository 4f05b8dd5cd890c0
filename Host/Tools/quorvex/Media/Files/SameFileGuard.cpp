#include "Media/Files/SameFileGuard.h"

#include "Options/ImageSequencePattern.h"
#include "Options/ToolError.h"

#include <sys/stat.h>

namespace Halvane::Quorvex::Tools {

void SameFileGuard::addInput(const std::string& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        mInputs.emplace(std::make_pair(status.st_dev, status.st_ino), path);
    }
}

void SameFileGuard::addInputs(const ImageSequencePattern& pattern, long first, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        addInput(pattern.pathOf(first + static_cast<long>(i)));
    }
}

void SameFileGuard::checkOutput(const std::string& output) const
{
    struct stat status {};
    if (::stat(output.c_str(), &status) != 0) {
        return;
    }
    const auto input = mInputs.find(std::make_pair(status.st_dev, status.st_ino));
    if (input == mInputs.end()) {
        return;
    }
    const std::string same = input->second == output
                                 ? "'" + output + "' is both the input and the output"
                                 : "the output '" + output + "' is the input '" + input->second +
                                       "' under another name";
    throw ToolError::usage(same + "; it would be overwritten as it is read, so nothing was "
                                  "written (name another output)");
}

void SameFileGuard::checkOutputs(const ImageSequencePattern& pattern) const
{
    for (const long number : pattern.existingNumbers()) {
        checkOutput(pattern.pathOf(number));
    }
}

}  // namespace Halvane::Quorvex::Tools
