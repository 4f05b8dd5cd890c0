#include "Runtime/SuiteRegistry.h"

#include "Runtime/FailureInjector.h"

namespace Halvane::Quorvex::Host {

SuiteRegistry::SuiteRegistry(FailureInjector& failures) : mFailures(failures) {}

void SuiteRegistry::offer(const std::string& name, A_long version, const void* table)
{
    std::lock_guard<std::mutex> lock(mMutex);
    mTables[{name, version}] = table;
}

SPErr SuiteRegistry::acquire(const char* name, A_long version, const void** suite)
{
    std::lock_guard<std::mutex> lock(mMutex);
    const Key key{name ? name : "", version};
    auto table = mTables.find(key);
    SuiteFailure how = SuiteFailure::Missing;
    const bool injected = mFailures.suiteFails(key.first, version, how);
    if (table == mTables.end() || (injected && how == SuiteFailure::Missing)) {
        *suite = nullptr;
        record(Event::Refused, key.first, version);
        return kSPSuiteNotFoundError;
    }
    if (injected && how == SuiteFailure::NullWithoutStatus) {
        *suite = nullptr;
        record(Event::Refused, key.first, version);
        return kSPNoError;
    }
    // A refusal that still hands over the table counts as held: an effect
    // that trusts the table must also release it.
    *suite = table->second;
    ++mHeld[key];
    record(Event::Acquired, key.first, version);
    return injected ? kSPSuiteNotFoundError : kSPNoError;
}

SPErr SuiteRegistry::release(const char* name, A_long version)
{
    std::lock_guard<std::mutex> lock(mMutex);
    const Key key{name ? name : "", version};
    auto held = mHeld.find(key);
    if (held == mHeld.end() || held->second == 0) {
        ++mUnbalancedReleases;
        return kSPSuiteNotFoundError;
    }
    --held->second;
    record(Event::Released, key.first, version);
    return kSPNoError;
}

std::size_t SuiteRegistry::outstanding() const
{
    std::lock_guard<std::mutex> lock(mMutex);
    std::size_t total = 0;
    for (const auto& entry : mHeld) {
        total += entry.second;
    }
    return total;
}

std::size_t SuiteRegistry::outstanding(const std::string& name, A_long version) const
{
    std::lock_guard<std::mutex> lock(mMutex);
    auto held = mHeld.find({name, version});
    return held == mHeld.end() ? 0 : held->second;
}

std::size_t SuiteRegistry::unbalancedReleases() const
{
    std::lock_guard<std::mutex> lock(mMutex);
    return mUnbalancedReleases;
}

std::vector<SuiteRegistry::LogEntry> SuiteRegistry::log() const
{
    std::lock_guard<std::mutex> lock(mMutex);
    return mLog;
}

void SuiteRegistry::startLog()
{
    std::lock_guard<std::mutex> lock(mMutex);
    mLog.clear();
    mLogging = true;
}

void SuiteRegistry::record(Event event, const std::string& name, A_long version)
{
    if (mLogging) {
        mLog.push_back({event, name, version});
    }
}

}  // namespace Halvane::Quorvex::Host
