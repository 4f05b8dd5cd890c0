#pragma once

#include "BasicSuite.h"
#include "HostTypes.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace Halvane::Quorvex::Host {

// The callbacks and suite functions of the runtime that a test can make fail.
enum class HostCall {
    AddParam,
    CheckoutParam,
    CheckinParam,
    CheckoutLayer,
    CheckoutLayerPixels,
    CheckoutOutput,
    GetPixelFormat,
    GetPixelData,
    Iterate,
    NewHandle,
    RegisterWithAEGP,
    ExecuteScript,
    NewMemHandle,
    LockMemHandle,
};

// How a suite acquisition fails.
enum class SuiteFailure {
    Missing,           // an error status and no table
    StatusWithSuite,   // an error status, yet a usable table
    NullWithoutStatus  // status 0 and no table
};

// Decides, call by call, whether a host call should fail. Failures are armed
// by a test and counted as the calls arrive; the calls may come from any
// thread.
class FailureInjector {
public:
    // Fails `call` with `status` after `skip` successful calls, `times` times
    // (-1 for every later call).
    void fail(HostCall call, A_long status, int skip = 0, int times = -1);
    void failSuite(const std::string& name, A_long version,
                   SuiteFailure how = SuiteFailure::Missing);
    void clear();

    // The status the call fails with, or 0 when it should succeed.
    A_long check(HostCall call);
    // How the acquisition of a suite should fail, if it should.
    bool suiteFails(const std::string& name, A_long version, SuiteFailure& how) const;
    // Counted in 64 bits: a host that runs for months makes billions.
    long long calls(HostCall call) const;

private:
    struct Plan {
        A_long status = 0;
        int skip = 0;
        int times = 0;
    };

    mutable std::mutex mMutex;
    std::map<HostCall, Plan> mPlans;
    std::map<HostCall, long long> mCalls;
    std::map<std::pair<std::string, A_long>, SuiteFailure> mSuiteFailures;
};

}  // namespace Halvane::Quorvex::Host
