#pragma once

#include "BasicSuite.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Halvane::Quorvex::Host {

class FailureInjector;

// The suites a host offers by name and version, and the ledger of who holds
// which: every acquisition and release is counted and logged in order, so
// that a test can show that an effect releases what it acquires, and when.
class SuiteRegistry {
public:
    enum class Event { Acquired, Released, Refused };

    struct LogEntry {
        Event event;
        std::string name;
        A_long version;
    };

    explicit SuiteRegistry(FailureInjector& failures);

    void offer(const std::string& name, A_long version, const void* table);

    SPErr acquire(const char* name, A_long version, const void** suite);
    SPErr release(const char* name, A_long version);

    // Acquisitions not yet released, in all or of one suite.
    std::size_t outstanding() const;
    std::size_t outstanding(const std::string& name, A_long version) const;
    // Releases of suites that were not held.
    std::size_t unbalancedReleases() const;
    std::vector<LogEntry> log() const;
    void clearLog();

private:
    using Key = std::pair<std::string, A_long>;

    FailureInjector& mFailures;
    mutable std::mutex mMutex;
    std::map<Key, const void*> mTables;
    std::map<Key, std::size_t> mHeld;
    std::size_t mUnbalancedReleases = 0;
    std::vector<LogEntry> mLog;
};

}  // namespace Halvane::Quorvex::Host
