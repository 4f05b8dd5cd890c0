#include "Helper/HalvanePrint.h"

#include <cstdarg>
#include <cstdio>

namespace Halvane::Quorvex {

void HalvanePrint(const char* format, ...)
{
    static char kBuffer[kHalvanePrintBufferSize];
    va_list arguments;
    va_start(arguments, format);
    if (std::vsnprintf(kBuffer, sizeof kBuffer, format, arguments) < 0) {
        kBuffer[0] = '\0';  // a conversion failed; print an empty line rather than stale text
    }
    va_end(arguments);
    std::fputs(kBuffer, stderr);
    std::fputc('\n', stderr);
}

}  // namespace Halvane::Quorvex
