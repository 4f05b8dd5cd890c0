#include "Helper/SuiteScoper.h"

#include <iterator>

namespace Halvane::Quorvex {

namespace {

struct DrawbotSuiteName {
    const char* name;
    int version;
};

constexpr DrawbotSuiteName kDrawbotSuites[] = {
    {kDRAWBOT_DrawSuite, kDRAWBOT_DrawSuite_VersionCurrent},
    {kDRAWBOT_SupplierSuite, kDRAWBOT_SupplierSuite_VersionCurrent},
    {kDRAWBOT_SurfaceSuite, kDRAWBOT_SurfaceSuite_VersionCurrent},
    {kDRAWBOT_PathSuite, kDRAWBOT_PathSuite_VersionCurrent},
};

// Every message goes through the host's sprintf as the format itself, so a
// text must not hold a conversion.
void ShowErrorMessage(const PF_InData* in_data, PF_OutData* out_data, const char* message)
{
    out_data->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    in_data->utils->ansi.sprintf(out_data->return_msg, message);
}

}  // namespace

const void* AcquireScopedSuite(SPBasicSuite* basic, const char* suite_name, int suite_version,
                               const PF_InData* in_data, PF_OutData* out_data,
                               const char* error_text)
{
    const void* suite = nullptr;
    // A host that answers 0 yet hands over no table has no such suite
    // either; the scoper's users call through the table unchecked.
    if (basic->AcquireSuite(suite_name, suite_version, &suite) == kSPNoError && suite != nullptr) {
        return suite;
    }
    if (out_data) {
        ShowErrorMessage(in_data, out_data,
                         error_text ? error_text : "Not able to acquire AEFX Suite.");
    }
    throw static_cast<int>(A_Err_MISSING_SUITE);
}

PF_Err AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version,
                    const char* error_text, void** suite)
{
    if (in_data->pica_basicP) {
        // The pointer decides, not the status: some hosts answer a missing
        // suite with 0 and a null table.
        in_data->pica_basicP->AcquireSuite(name, version, const_cast<const void**>(suite));
        if (*suite) {
            return PF_Err_NONE;
        }
    }
    char message[1024];
    in_data->utils->ansi.sprintf(message, "Not able to acquire AEFX Suite-%s-%d", name, version);
    ShowErrorMessage(in_data, out_data, error_text ? error_text : message);
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version,
                    const char* error_text)
{
    if (in_data->pica_basicP) {
        in_data->pica_basicP->ReleaseSuite(name, version);
        return PF_Err_NONE;
    }
    ShowErrorMessage(in_data, out_data,
                     error_text ? error_text : "Not able to release AEFX Suite.");
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, DRAWBOT_Suites* suites)
{
    if (!suites) {
        ShowErrorMessage(in_data, out_data,
                         "NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }
    void* acquired[std::size(kDrawbotSuites)] = {};
    PF_Err err = PF_Err_NONE;
    for (size_t i = 0; i < std::size(kDrawbotSuites) && err == PF_Err_NONE; ++i) {
        err = AcquireSuite(in_data, out_data, kDrawbotSuites[i].name, kDrawbotSuites[i].version,
                           nullptr, &acquired[i]);
    }
    // Suites acquired before a failure stay acquired and are handed over.
    suites->drawbot_suiteP = static_cast<DRAWBOT_DrawbotSuiteCurrent*>(acquired[0]);
    suites->supplier_suiteP = static_cast<DRAWBOT_SupplierSuiteCurrent*>(acquired[1]);
    suites->surface_suiteP = static_cast<DRAWBOT_SurfaceSuiteCurrent*>(acquired[2]);
    suites->path_suiteP = static_cast<DRAWBOT_PathSuiteCurrent*>(acquired[3]);
    return err;
}

PF_Err ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data)
{
    // Same order as the acquisition, and all four even without a basic suite.
    for (const DrawbotSuiteName& suite : kDrawbotSuites) {
        if (in_data->pica_basicP) {
            in_data->pica_basicP->ReleaseSuite(suite.name, suite.version);
        } else {
            ShowErrorMessage(in_data, out_data, "Not able to release AEFX Suite.");
        }
    }
    return PF_Err_NONE;
}

}  // namespace Halvane::Quorvex
