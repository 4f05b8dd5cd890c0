#include "AvErrorText.h"

extern "C" {
#include <libavutil/error.h>
}

namespace Halvane::Quorvex::Tools {

std::string AvErrorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof(text));
    return text;
}

}  // namespace Halvane::Quorvex::Tools
