#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Halvane::Quorvex::Testing {

// What a finished run left.
struct ToolResult {
    int exitCode = -1;  // 128 + the signal for a run a signal ended
    std::string out;
    std::string err;
};

// A program (the built quorvex, ffmpeg, melt...) run as users run it, standard output and error caught apart.
class ToolProcess {
public:
    // `program` is a path or a name looked up in PATH; `environment` is added to the test's own. Standard
    // error goes to `errorTarget` where given, else to a terminal if `errorIsTerminal`, to see what users see.
    ToolProcess(const std::string& program, const std::vector<std::string>& arguments,
                const std::map<std::string, std::string>& environment, bool errorIsTerminal,
                int errorTarget = -1);
    ~ToolProcess();  // kills the program if it still runs

    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    void sendSignal(int signal);
    // Whether the program ends within `limit`.
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
