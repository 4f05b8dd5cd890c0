#include "Media/Files/OutputFolder.h"

#include "Media/Files/TemporaryFileRegistry.h"
#include "Options/ToolError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

OutputFolder::OutputFolder(const std::string& path)
{
    std::vector<std::filesystem::path> missing;
    std::error_code error;
    for (std::filesystem::path level(path); !level.empty() && !std::filesystem::exists(level, error);
         level = level.parent_path()) {
        missing.push_back(level);
        if (level == level.parent_path()) {
            break;
        }
    }
    for (auto level = missing.rbegin(); level != missing.rend(); ++level) {
        // Registered first: an interrupt while it is made still finds it.
        TemporaryFileRegistry::addFolder(level->string());
        if (::mkdir(level->c_str(), 0777) != 0 && errno != EEXIST) {
            const int mkdirError = errno;
            TemporaryFileRegistry::removeFolder(level->string());
            throw ToolError::runtime("cannot make the folder '" + path +
                                     "': " + std::strerror(mkdirError));
        }
        mMade.push_back(level->string());
    }
    if (!std::filesystem::is_directory(path, error)) {
        throw ToolError::runtime("cannot make the folder '" + path + "': " +
                                 std::strerror(ENOTDIR));
    }
}

OutputFolder::~OutputFolder()
{
    for (auto level = mMade.rbegin(); level != mMade.rend(); ++level) {
        ::rmdir(level->c_str());
        TemporaryFileRegistry::removeFolder(*level);
    }
}

void OutputFolder::keep()
{
    for (const std::string& level : mMade) {
        TemporaryFileRegistry::removeFolder(level);
    }
    mMade.clear();
}

}  // namespace Halvane::Quorvex::Tools
