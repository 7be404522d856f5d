#include "CommandLine.h"
#include "Descriptor.h"
#include "FilesystemPath.h"
#include "Platform.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char **environ;

namespace Platform
{

namespace
{

/// What became of a child: why it could not be started, or 0 and the state that waitpid gave.
struct ChildEnd
{
    int error;
    int state;
};

/// The state of a child that nobody knows the end of: as if by SIGKILL.
constexpr int kUnknownState = SIGKILL;

/// waitpid, also when it is interrupted.
pid_t WaitFor(pid_t child, int &state)
{
    pid_t ended = -1;
    do
        ended = waitpid(child, &state, 0);
    while (ended == -1 && errno == EINTR);
    return ended;
}

/// All that the helper does. It may use only what is allowed behind a fork of a process with threads: no memory of the
/// heap, no lock. While the program runs it keeps nothing of the host's open.
[[noreturn]] void BeHelper(char *const *arguments, const posix_spawnattr_t &attributes, int result)
{
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &byDefault, nullptr);
    pid_t child = -1;
    ChildEnd end = {posix_spawn(&child, arguments[0], nullptr, &attributes, arguments, environ), kUnknownState};
    close_range(0, static_cast<unsigned>(result) - 1, 0);
    close_range(static_cast<unsigned>(result) + 1, ~0U, 0);
    if (end.error == 0 && WaitFor(child, end.state) != child)
        end.state = kUnknownState;
    const ssize_t written = write(result, &end, sizeof end);
    _exit(written == sizeof end ? 0 : 1);
}

/// Signals of the terminal are for the program, not for the helper: it blocks them all, and the attributes give the
/// program the host's mask.
class HelperSignals
{
public:
    HelperSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
        m_isReady = posix_spawnattr_init(&m_attributes) == 0;
        if (m_isReady)
        {
            posix_spawnattr_setsigmask(&m_attributes, &m_before);
            posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK);
        }
    }
    ~HelperSignals()
    {
        Restore();
        if (m_isReady)
            posix_spawnattr_destroy(&m_attributes);
    }
    HelperSignals(const HelperSignals &) = delete;
    HelperSignals &operator=(const HelperSignals &) = delete;

    explicit operator bool() const { return m_isReady; }
    const posix_spawnattr_t &Attributes() const { return m_attributes; }
    /// The host's mask again.
    void Restore() const { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before;
    posix_spawnattr_t m_attributes;
    bool m_isReady = false;
};

/// Reads what the helper says; `end` stays as it is where it ends before it has said anything.
void ReadEnd(int descriptor, ChildEnd &end)
{
    ChildEnd told = end;
    ssize_t length = -1;
    do
        length = read(descriptor, &told, sizeof told);
    while (length == -1 && errno == EINTR);
    if (length == sizeof told)
        end = told;
}

/// Has a helper process run the program and tell of it through a pipe. The other ways are not clean for a library: to
/// change what SIGCHLD does, also for a moment, changes it under the host's other threads, and another thread that
/// waits for any child would still get this one. False when there is no helper.
bool RunByHelper(char *const *arguments, ChildEnd &end)
{
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const HelperSignals signals;
    const pid_t helper = signals ? _Fork() : -1;
    if (helper == 0)
        BeHelper(arguments, signals.Attributes(), ends[1]);
    writing.Close();
    signals.Restore();
    if (helper == -1)
        return false;
    ReadEnd(reading.Get(), end);
    // Nothing is left to wait for where the host has done so.
    int state = 0;
    WaitFor(helper, state);
    return true;
}

} // namespace

bool RunCommand(const std::string &commandLine, std::uint32_t &exitCode)
{
    std::vector<std::string> arguments = SplitCommandLine(commandLine);
    if (arguments.empty())
        return false;
    std::vector<char *> argumentPointers;
    argumentPointers.reserve(arguments.size() + 1);
    for (std::string &argument : arguments)
    {
        argument = ToFilesystemPath(argument).string();
        argumentPointers.push_back(argument.data());
    }
    argumentPointers.push_back(nullptr);

    ChildEnd end = {0, kUnknownState};
    if (!RunByHelper(argumentPointers.data(), end) || end.error != 0)
        return false;
    exitCode = WIFEXITED(end.state) ? static_cast<std::uint32_t>(WEXITSTATUS(end.state)) : kUnknownExitCode;
    return true;
}

} // namespace Platform
