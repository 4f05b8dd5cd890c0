#include "TemporaryFileRegistry.h"

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

void TemporaryFileRegistry::removeAll()
{
    std::lock_guard<std::mutex> lock(mutex());
    for (const std::string& path : paths()) {
        ::unlink(path.c_str());
    }
    paths().clear();
}

}  // namespace Halvane::Quorvex::Tools
