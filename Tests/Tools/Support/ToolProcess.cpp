#include "Tools/Support/ToolProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Halvane::Quorvex::Testing {

namespace {

int TemporaryFile()
{
    char name[] = "/tmp/quorvex-tool-output-XXXXXX";
    const int fd = ::mkstemp(name);
    if (fd < 0) {
        throw std::runtime_error(std::string("mkstemp: ") + std::strerror(errno));
    }
    ::unlink(name);
    return fd;
}

std::string ReadAll(int fd)
{
    std::string text;
    ::lseek(fd, 0, SEEK_SET);
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(fd, buffer, sizeof(buffer))) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

ToolProcess::ToolProcess(const std::vector<std::string>& arguments, const Options& options)
{
    // Everything the child needs is made before fork: after it, only calls
    // that are safe in a forked child.
    std::vector<std::string> argumentTexts{QUORVEX_TOOL_PATH};
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : argumentTexts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);

    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const auto equals = text.find('=');
        if (equals != std::string::npos) {
            variables[text.substr(0, equals)] = text.substr(equals + 1);
        }
    }
    for (const auto& [name, value] : options.environment) {
        variables[name] = value;
    }
    std::vector<std::string> environmentTexts;
    for (const auto& [name, value] : variables) {
        environmentTexts.push_back(name + "=" + value);
    }
    std::vector<char*> envp;
    for (std::string& text : environmentTexts) {
        envp.push_back(text.data());
    }
    envp.push_back(nullptr);

    mOutFile = TemporaryFile();
    int errorTarget = -1;
    if (options.errorIsTerminal) {
        int follower = -1;
        if (::openpty(&mTerminal, &follower, nullptr, nullptr, nullptr) != 0) {
            throw std::runtime_error(std::string("openpty: ") + std::strerror(errno));
        }
        errorTarget = follower;
    } else {
        mErrFile = TemporaryFile();
        errorTarget = mErrFile;
    }

    mPid = ::fork();
    if (mPid == 0) {
        ::dup2(mOutFile, STDOUT_FILENO);
        ::dup2(errorTarget, STDERR_FILENO);
        const int nothing = ::open("/dev/null", O_RDONLY);
        ::dup2(nothing, STDIN_FILENO);
        ::execve(argv[0], argv.data(), envp.data());
        ::_exit(127);
    }
    if (options.errorIsTerminal) {
        ::close(errorTarget);
    }
    if (mPid < 0) {
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    }
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

ToolResult ToolProcess::wait()
{
    ToolResult result;
    if (mTerminal >= 0) {
        // Read as it comes, or a full terminal buffer would stall the
        // program; the end reads as an error once it has exited.
        char buffer[4096];
        for (;;) {
            const ssize_t count = ::read(mTerminal, buffer, sizeof(buffer));
            if (count > 0) {
                result.err.append(buffer, static_cast<std::size_t>(count));
            } else if (count < 0 && errno == EINTR) {
                continue;
            } else {
                break;
            }
        }
    }
    int status = 0;
    while (::waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
    }
    mPid = -1;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = ReadAll(mOutFile);
    if (mErrFile >= 0) {
        result.err = ReadAll(mErrFile);
    }
    return result;
}

ToolResult ToolProcess::run(const std::vector<std::string>& arguments, const Options& options)
{
    ToolProcess process(arguments, options);
    return process.wait();
}

}  // namespace Halvane::Quorvex::Testing
