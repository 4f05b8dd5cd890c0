#include "Media/Video/AvErrorText.h"

#include "Options/NumberText.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <cstdio>
#include <mutex>

namespace Halvane::Quorvex::Tools {

namespace {

std::mutex gLogMutex;
// The first error FFmpeg logged since the last AvErrorText: later lines of
// one report only list details (DNxHD's profiles, one a line).
std::string gFirstError;

void KeepFirstError(void* context, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_ERROR) {
        return;
    }
    char line[1024];
    int prefix = 0;
    av_log_format_line2(context, level, format, arguments, line, sizeof(line), &prefix);
    std::lock_guard<std::mutex> lock(gLogMutex);
    if (gFirstError.empty()) {
        gFirstError = Trimmed(line);
    }
}

}  // namespace

std::string AvErrorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof(text));
    std::string logged;
    {
        std::lock_guard<std::mutex> lock(gLogMutex);
        logged.swap(gFirstError);
    }
    return logged.empty() ? std::string(text) : logged + " (" + text + ")";
}

void ForgetFFmpegLog()
{
    std::lock_guard<std::mutex> lock(gLogMutex);
    gFirstError.clear();
}

void KeepFFmpegLogForErrors()
{
    av_log_set_callback(KeepFirstError);
}

}  // namespace Halvane::Quorvex::Tools
