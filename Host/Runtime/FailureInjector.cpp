#include "Runtime/FailureInjector.h"

namespace Halvane::Quorvex::Host {

void FailureInjector::fail(HostCall call, A_long status, int skip, int times)
{
    std::lock_guard<std::mutex> lock(mMutex);
    mPlans[call] = Plan{status, skip, times};
}

void FailureInjector::failSuite(const std::string& name, A_long version, SuiteFailure how)
{
    std::lock_guard<std::mutex> lock(mMutex);
    mSuiteFailures[{name, version}] = how;
}

void FailureInjector::clear()
{
    std::lock_guard<std::mutex> lock(mMutex);
    mPlans.clear();
    mSuiteFailures.clear();
}

A_long FailureInjector::check(HostCall call)
{
    std::lock_guard<std::mutex> lock(mMutex);
    ++mCalls[call];
    auto found = mPlans.find(call);
    if (found == mPlans.end()) {
        return 0;
    }
    Plan& plan = found->second;
    if (plan.skip > 0) {
        --plan.skip;
        return 0;
    }
    if (plan.times == 0) {
        return 0;
    }
    if (plan.times > 0) {
        --plan.times;
    }
    return plan.status;
}

bool FailureInjector::suiteFails(const std::string& name, A_long version, SuiteFailure& how) const
{
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mSuiteFailures.find({name, version});
    if (found == mSuiteFailures.end()) {
        return false;
    }
    how = found->second;
    return true;
}

long long FailureInjector::calls(HostCall call) const
{
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mCalls.find(call);
    return found == mCalls.end() ? 0 : found->second;
}

}  // namespace Halvane::Quorvex::Host
