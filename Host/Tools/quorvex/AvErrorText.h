#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The words of an FFmpeg error code: "Invalid data found when processing
// input".
std::string AvErrorText(int error);

}  // namespace Halvane::Quorvex::Tools
