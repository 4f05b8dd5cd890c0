#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// The temporary files the program has open, and the folders it made for
// them, so that an interrupt that cannot wait for the normal way out still
// removes every one of them.
class TemporaryFileRegistry {
public:
    static void add(const std::string& path);
    static void remove(const std::string& path);
    // A folder made for outputs, removed after the files if it is empty.
    static void addFolder(const std::string& path);
    static void removeFolder(const std::string& path);
    // Deletes every registered file, then every registered folder that is
    // empty, the last made first, and forgets them.
    static void removeAll();

private:
    static std::mutex& mutex();
    static std::set<std::string>& paths();
    static std::vector<std::string>& folders();
};

}  // namespace Halvane::Quorvex::Tools
