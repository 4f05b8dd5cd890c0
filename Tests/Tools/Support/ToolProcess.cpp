#include "Tools/Support/ToolProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Halvane::Quorvex::Testing {

namespace {

void Check(bool ok, const char* what)
{
    if (!ok) {
        throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    }
}

// From the start of a file; a terminal reads until an error once the program has exited.
std::string ReadAll(int fd)
{
    std::string text;
    ::lseek(fd, 0, SEEK_SET);
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(fd, buffer, sizeof(buffer))) > 0 || (count < 0 && errno == EINTR);) {
        text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return text;
}

}  // namespace

ToolProcess::ToolProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment,
                         bool errorIsTerminal, int errorTarget)
{
    // env(1) sets the variables and becomes the program, keeping the process.
    std::vector<std::string> argumentTexts{"env"};
    for (const auto& [name, value] : environment) {
        argumentTexts.push_back(name + "=" + value);
    }
    argumentTexts.push_back(program);
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());

    mOutFile = ::memfd_create("quorvex-out", MFD_CLOEXEC);
    Check(mOutFile >= 0, "memfd_create");
    if (errorTarget < 0 && errorIsTerminal) {
        Check(::openpty(&mTerminal, &errorTarget, nullptr, nullptr, nullptr) == 0, "openpty");
    } else if (errorTarget < 0) {
        errorTarget = mErrFile = ::memfd_create("quorvex-err", MFD_CLOEXEC);
        Check(mErrFile >= 0, "memfd_create");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, mOutFile, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorTarget, STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::vector<char*> pointers;
    for (std::string& text : argumentTexts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    errno = ::posix_spawnp(&mPid, "env", &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (mTerminal >= 0) {
        ::close(errorTarget);
    }
    Check(errno == 0, "posix_spawn");
}

ToolProcess::~ToolProcess()
{
    if (mPid > 0) {
        ::kill(mPid, SIGKILL);
        ::waitpid(mPid, nullptr, 0);
    }
    for (const int fd : {mOutFile, mErrFile, mTerminal}) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

void ToolProcess::sendSignal(int signal)
{
    if (mPid > 0) {
        ::kill(mPid, signal);
    }
}

bool ToolProcess::endsWithin(std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (mPid > 0) {
        int status = 0;
        if (::waitpid(mPid, &status, WNOHANG) == mPid) {
            mPid = -1;
            mStatus = status;
        } else if (std::chrono::steady_clock::now() > deadline) {
            return false;
        } else {
            ::usleep(20 * 1000);
        }
    }
    return true;
}

ToolResult ToolProcess::wait()
{
    ToolResult result;
    if (mTerminal >= 0) {
        result.err = ReadAll(mTerminal);  // before waiting, or a full terminal would stall the program
    }
    int status = mStatus.value_or(0);
    while (mPid > 0 && ::waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
    }
    mPid = -1;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = ReadAll(mOutFile);
    if (mErrFile >= 0) {
        result.err = ReadAll(mErrFile);
    }
    return result;
}

}  // namespace Halvane::Quorvex::Testing
