#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The words of an FFmpeg error code: "Invalid data found when processing
// input". Where FFmpeg said more on its log since the last call ("video
// parameters incompatible with DNxHD"), that comes first, so the one line
// the user sees holds the library's own reason.
std::string AvErrorText(int error);

// Sends FFmpeg's log to AvErrorText instead of standard error: its chatter
// would bury the one line that matters. Call once, at start-up.
void KeepFFmpegLogForErrors();
// Forgets what FFmpeg logged so far: a new piece of work starts, and what an
// earlier one logged concerns no error of this one.
void ForgetFFmpegLog();

}  // namespace Halvane::Quorvex::Tools
