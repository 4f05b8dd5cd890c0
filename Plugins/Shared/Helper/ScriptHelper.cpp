#include "Helper/ScriptHelper.h"

#include "AEGPSuites.h"
#include "Helper/SuiteScoper.h"

#include <algorithm>
#include <cctype>

namespace Halvane::Quorvex::ScriptHelper {

namespace {

// The two texts a script hands back. The host allocates them and the caller
// frees them, the result first, on every way out.
class ScriptOutput {
public:
    explicit ScriptOutput(const AEGP_MemorySuite1& memory) : mMemory(memory) {}
    ~ScriptOutput()
    {
        free(mResult);
        free(mError);
    }

    ScriptOutput(const ScriptOutput&) = delete;
    ScriptOutput& operator=(const ScriptOutput&) = delete;

    AEGP_MemHandle* result() { return &mResult; }
    AEGP_MemHandle* error() { return &mError; }

    // The text of a handle, or null when there is none to lock.
    const char* lock(AEGP_MemHandle handle) const
    {
        void* text = nullptr;
        if (handle) {
            mMemory.AEGP_LockMemHandle(handle, &text);
        }
        return static_cast<const char*>(text);
    }

private:
    // Freeing ends the lock too, so there is no unlock.
    void free(AEGP_MemHandle handle) const
    {
        if (handle) {
            mMemory.AEGP_FreeMemHandle(handle);
        }
    }

    const AEGP_MemorySuite1& mMemory;
    AEGP_MemHandle mResult = nullptr;
    AEGP_MemHandle mError = nullptr;
};

bool IsWhiteSpace(char byte)
{
    return std::isspace(static_cast<unsigned char>(byte)) != 0;
}

}  // namespace

std::string RunSriptAndGetStringResult(SPBasicSuite* basic, const char* script)
{
    SuiteScoper<AEGP_UtilitySuite5> utility(basic, kAEGPUtilitySuite, 11);
    SuiteScoper<AEGP_MemorySuite1> memory(basic, kAEGPMemorySuite, 1);
    // A host may answer 0 and hand over no table; that suite is missing too.
    if (!utility.get() || !memory.get()) {
        throw static_cast<int>(A_Err_MISSING_SUITE);
    }

    std::string result;
    ScriptOutput output(*memory.get());
    // Neither the status nor the error text is reported: what counts is the
    // result text, as far as the host gave one.
    utility->AEGP_ExecuteScript(0, script, false, output.result(), output.error());
    const char* resultText = output.lock(*output.result());
    output.lock(*output.error());
    if (resultText) {
        result = resultText;
    }
    return result;
}

std::string TrimStringWhiteSpaces(const std::string& text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), IsWhiteSpace);
    const auto last = std::find_if_not(text.rbegin(), text.rend(), IsWhiteSpace).base();
    return first < last ? std::string(first, last) : std::string();
}

}  // namespace Halvane::Quorvex::ScriptHelper
