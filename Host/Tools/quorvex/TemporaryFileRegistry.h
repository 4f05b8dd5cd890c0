#pragma once

#include <mutex>
#include <set>
#include <string>

namespace Halvane::Quorvex::Tools {

// The temporary files the program has open, so that an interrupt that
// cannot wait for the normal way out still removes every one of them.
class TemporaryFileRegistry {
public:
    static void add(const std::string& path);
    static void remove(const std::string& path);
    // Deletes every registered file and forgets it.
    static void removeAll();

private:
    static std::mutex& mutex();
    static std::set<std::string>& paths();
};

}  // namespace Halvane::Quorvex::Tools
