#include "Media/Files/TemporaryFileRegistry.h"

#include <algorithm>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

std::mutex& TemporaryFileRegistry::mutex()
{
    static std::mutex kMutex;
    return kMutex;
}

std::set<std::string>& TemporaryFileRegistry::paths()
{
    static std::set<std::string> kPaths;
    return kPaths;
}

void TemporaryFileRegistry::add(const std::string& path)
{
    std::lock_guard<std::mutex> lock(mutex());
    paths().insert(path);
}

void TemporaryFileRegistry::remove(const std::string& path)
{
    std::lock_guard<std::mutex> lock(mutex());
    paths().erase(path);
}

std::vector<std::string>& TemporaryFileRegistry::folders()
{
    static std::vector<std::string> kFolders;
    return kFolders;
}

void TemporaryFileRegistry::addFolder(const std::string& path)
{
    std::lock_guard<std::mutex> lock(mutex());
    folders().push_back(path);
}

void TemporaryFileRegistry::removeFolder(const std::string& path)
{
    std::lock_guard<std::mutex> lock(mutex());
    folders().erase(std::remove(folders().begin(), folders().end(), path), folders().end());
}

void TemporaryFileRegistry::removeAll()
{
    std::lock_guard<std::mutex> lock(mutex());
    for (const std::string& path : paths()) {
        ::unlink(path.c_str());
    }
    paths().clear();
    // rmdir leaves a folder that holds anything.
    for (auto folder = folders().rbegin(); folder != folders().rend(); ++folder) {
        ::rmdir(folder->c_str());
    }
    folders().clear();
}

}  // namespace Halvane::Quorvex::Tools
