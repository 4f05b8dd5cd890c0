#pragma once

#include "BasicSuite.h"
#include "DrawbotSuites.h"
#include "EffectInterface.h"

namespace Halvane::Quorvex {

// Acquires the suite for a SuiteScoper and throws A_Err_MISSING_SUITE (an int)
// when the host says no (it reaches the host as 516 through EntryPointFunc).
// With `out_data` given, the host is also asked to show
// `error_text` (or a stock text) to the user.
const void* AcquireScopedSuite(SPBasicSuite* basic, const char* suite_name, int suite_version,
                               const PF_InData* in_data, PF_OutData* out_data,
                               const char* error_text);

// Holds one host suite for the length of a scope. The name is not copied: the
// caller's text has to outlive the scoper.
template <typename SuiteType>
class SuiteScoper {
public:
    SuiteScoper(const PF_InData* in_data, const char* suite_name, int suite_version,
                PF_OutData* out_data = nullptr, const char* error_text = nullptr)
        : mBasicSuite(in_data->pica_basicP), mSuiteName(suite_name), mSuiteVersion(suite_version)
    {
        mSuite = static_cast<const SuiteType*>(AcquireScopedSuite(
            mBasicSuite, suite_name, suite_version, in_data, out_data, error_text));
    }

    SuiteScoper(SPBasicSuite* basic, const char* suite_name, int suite_version)
        : mBasicSuite(basic), mSuiteName(suite_name), mSuiteVersion(suite_version)
    {
        mSuite = static_cast<const SuiteType*>(
            AcquireScopedSuite(basic, suite_name, suite_version, nullptr, nullptr, nullptr));
    }

    ~SuiteScoper()
    {
        if (mSuite) {
            mBasicSuite->ReleaseSuite(mSuiteName, mSuiteVersion);
        }
    }

    SuiteScoper(const SuiteScoper&) = delete;
    SuiteScoper& operator=(const SuiteScoper&) = delete;

    const SuiteType* operator->() const { return mSuite; }
    const SuiteType* get() const { return mSuite; }

private:
    const SuiteType* mSuite = nullptr;
    SPBasicSuite* mBasicSuite;
    const char* mSuiteName;
    A_long mSuiteVersion;
};

// The status-reporting forms. Failures set PF_OutFlag_DISPLAY_ERROR_MESSAGE
// and leave a message in out_data->return_msg.
PF_Err AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version,
                    const char* error_text, void** suite);
PF_Err ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version,
                    const char* error_text);
PF_Err AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, DRAWBOT_Suites* suites);
PF_Err ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data);

}  // namespace Halvane::Quorvex
