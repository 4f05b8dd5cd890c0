#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Halvane::Quorvex::Testing {

// What a finished run of the quorvex program left.
struct ToolResult {
    int exitCode = -1;  // 128 + the signal for a run a signal ended
    std::string out;
    std::string err;
};

// The built quorvex program, or another (ffmpeg, melt, ...), run as users
// run it, with standard output and standard error caught apart. Standard
// error can be a terminal, to see what users see at one.
class ToolProcess {
public:
    // `program` is a path, or a name looked up in PATH. `environment` is
    // added to the test's own. `errorTarget`, where given, is the descriptor
    // standard error goes to.
    ToolProcess(const std::string& program, const std::vector<std::string>& arguments,
                const std::map<std::string, std::string>& environment, bool errorIsTerminal,
                int errorTarget = -1);
    // Kills the program if it still runs.
    ~ToolProcess();

    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    void sendSignal(int signal);
    // Whether the program ends within `limit`; one that does not is killed
    // when the object goes.
    bool endsWithin(std::chrono::milliseconds limit);
    ToolResult wait();

private:
    pid_t mPid = -1;
    std::optional<int> mStatus;  // once the program has ended
    int mOutFile = -1;
    int mErrFile = -1;
    int mTerminal = -1;
};

}  // namespace Halvane::Quorvex::Testing
