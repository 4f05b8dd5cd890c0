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
// which: every acquisition and release is counted, so that a test can show
// that an effect releases what it acquires. The order of events is logged
// only after startLog(): a host renders for days, and nothing it keeps may
// grow with the frames.
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
    // Empties the log and logs every later event, for a test that asks when
    // suites are taken and given back.
    void startLog();
    // The events since startLog(); empty when the log was never started.
    std::vector<LogEntry> log() const;

private:
    void record(Event event, const std::string& name, A_long version);

    using Key = std::pair<std::string, A_long>;

    FailureInjector& mFailures;
    mutable std::mutex mMutex;
    std::map<Key, const void*> mTables;
    std::map<Key, std::size_t> mHeld;
    std::size_t mUnbalancedReleases = 0;
    bool mLogging = false;
    std::vector<LogEntry> mLog;
};

}  // namespace Halvane::Quorvex::Host
