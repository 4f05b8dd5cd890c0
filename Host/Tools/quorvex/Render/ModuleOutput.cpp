#include "Render/ModuleOutput.h"

#include "Options/ToolError.h"

#include <cerrno>
#include <cstring>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr std::size_t kKeptTail = 64 * 1024;

}  // namespace

ModuleOutput::ModuleOutput(bool toStandardError)
{
    if (toStandardError) {
        mTarget = STDERR_FILENO;
        return;
    }
    mKept.emplace("quorvex-module-output");
    if (!mKept->open()) {
        throw ToolError::runtime(std::string("cannot keep the effect module's output: ") + std::strerror(errno));
    }
    mTarget = mKept->descriptor();
}

std::string ModuleOutput::kept() const
{
    return mKept ? mKept->text(kKeptTail) : std::string();
}

}  // namespace Halvane::Quorvex::Tools
