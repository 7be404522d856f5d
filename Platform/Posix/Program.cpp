#include "Program.h"

#include "FilesystemPath.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace Platform
{

namespace
{

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGTERM, SIGPIPE};
constexpr timespec kPause = {0, 10'000'000};
constexpr std::uint64_t kMillisecondsPerSecond = 1000;
/// For so many pauses children may end in order, when they hear of the end and have something to leave in order.
constexpr int kPoliteRounds = 500;
/// What cannot be killed, since it hangs within the system, is not waited for.
constexpr int kKillRounds = 300;

struct Removed
{
    char path[PATH_MAX];
    volatile std::sig_atomic_t isUsed;
};
std::array<Removed, 8> removedFiles;

// What the handler of the signals calls may use only what is allowed there: no memory of the heap, no lock.

/// Takes a number off the front of `text`, with what stands before and behind it; 0 when there is none.
pid_t TakeNumber(const char *&text)
{
    pid_t number = 0;
    while (*text == ' ')
        ++text;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number * 10 + (*text - '0');
    return number;
}

/// Sends a signal to the children that this thread has now; false when there is none.
bool SignalChildren(int signal)
{
    char text[4096];
    const int list = open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
    const ssize_t length = list == -1 ? 0 : read(list, text, sizeof text - 1);
    if (list != -1)
        close(list);
    text[std::max(length, ssize_t{0})] = '\0';
    bool found = false;
    const char *rest = text;
    for (pid_t child = 0; (child = TakeNumber(rest)) != 0;)
    {
        kill(child, signal);
        found = true;
    }
    return found;
}

/// Ends all that this process has started. What they leave behind becomes this process's own, since it is a subreaper,
/// and goes the same way.
void EndChildren()
{
    for (int round = 0;
         round < kPoliteRounds + kKillRounds && SignalChildren(round < kPoliteRounds ? SIGTERM : SIGKILL); ++round)
    {
        while (waitpid(-1, nullptr, WNOHANG) > 0)
            continue;
        nanosleep(&kPause, nullptr);
    }
}

void HandleEnd(int signal)
{
    EndChildren();
    for (auto file = removedFiles.rbegin(); file != removedFiles.rend(); ++file)
    {
        if (file->isUsed && unlink(file->path) != 0)
            rmdir(file->path);
    }
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, nullptr);
    raise(signal); // comes when this returns
}

/// What is ignored, as nohup has it, stays so.
void Handle(void (*from)(int), void (*to)(int))
{
    for (const int signal : kEndingSignals)
    {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != from)
            continue;
        action = {};
        action.sa_handler = to;
        for (const int other : kEndingSignals)
            sigaddset(&action.sa_mask, other);
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

Interruption::Interruption()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1UL, 0UL, 0UL, 0UL);
    Handle(SIG_DFL, HandleEnd);
}

Interruption::~Interruption()
{
    Handle(HandleEnd, SIG_DFL);
}

RemovedWhenInterrupted::RemovedWhenInterrupted(const std::string &path, std::FILE * /*stream*/)
    : m_place(removedFiles.size())
{
    const std::string native = ToFilesystemPath(path).string();
    for (std::size_t place = 0; place < removedFiles.size() && native.size() < PATH_MAX; ++place)
    {
        if (removedFiles[place].isUsed)
            continue;
        std::memcpy(removedFiles[place].path, native.c_str(), native.size() + 1);
        removedFiles[place].isUsed = 1;
        m_place = place;
        break;
    }
}

RemovedWhenInterrupted::~RemovedWhenInterrupted()
{
    if (m_place < removedFiles.size())
        removedFiles[m_place].isUsed = 0;
}

Worker::Worker(char *const *arguments, std::FILE *output, std::FILE *messages)
{
    // Its exit code is wanted, whatever this process has inherited.
    std::signal(SIGCHLD, SIG_DFL);
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0)
        return;
    pid_t child = 0;
    const auto leads = [&](std::FILE *stream, int descriptor)
    { return !stream || posix_spawn_file_actions_adddup2(&actions, fileno(stream), descriptor) == 0; };
    if (leads(output, STDOUT_FILENO) && leads(messages, STDERR_FILENO) &&
        posix_spawn(&child, "/proc/self/exe", &actions, nullptr, arguments, environ) == 0)
        m_system = child;
    posix_spawn_file_actions_destroy(&actions);
}

bool Worker::Wait(std::uint32_t seconds, std::uint32_t &exitCode)
{
    std::uint64_t start = 0;
    std::uint64_t now = 0;
    MonotonicMilliseconds(start);
    int state = 0;
    pid_t ended = 0;
    for (;;)
    {
        ended = waitpid(static_cast<pid_t>(m_system), &state, WNOHANG);
        MonotonicMilliseconds(now);
        if (ended != 0 || now - start >= seconds * kMillisecondsPerSecond)
            break;
        nanosleep(&kPause, nullptr);
    }
    if (ended == 0)
        return false;
    exitCode =
        ended == m_system && WIFEXITED(state) ? static_cast<std::uint32_t>(WEXITSTATUS(state)) : kUnknownExitCode;
    m_system = 0;
    return true;
}

void Worker::End()
{
    if (m_system != 0)
    {
        kill(static_cast<pid_t>(m_system), SIGKILL); // also where the system does not list the children
        EndChildren();
    }
    m_system = 0;
}

ConsoleInUtf8::ConsoleInUtf8() = default;

ConsoleInUtf8::~ConsoleInUtf8()
{
    static_cast<void>(m_before); // a terminal takes bytes as they come
}

void OccupyStandardStreams()
{
    // Each open takes the lowest number that is free. Read-only for output, and the other way round: nothing comes of
    // using them.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY) == -1)
            return;
    }
}

bool IsTerminal(std::FILE *stream)
{
    return isatty(fileno(stream)) == 1;
}

std::size_t TerminalColumns(std::FILE *stream)
{
    winsize size = {};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool EnableEscapeSequences(std::FILE *stream)
{
    std::string terminal;
    return IsTerminal(stream) && ReadEnvironmentVariable("TERM", terminal) && terminal != "dumb";
}

std::string MachineName()
{
    std::array<char, HOST_NAME_MAX + 1> name = {};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool IsExecutable(const std::string &path)
{
    return access(ToFilesystemPath(path).c_str(), X_OK) == 0;
}

bool IsDirectory(const std::string &path)
{
    std::error_code error;
    return std::filesystem::is_directory(ToFilesystemPath(path), error);
}

std::string AsPrefix(const std::string &directory)
{
    return directory.find_last_of("/\\") == directory.size() - 1 ? directory : directory + "/";
}

bool OpenWithItsProgram(const std::string &path)
{
    // A path that begins with "-" would be taken for an option.
    std::string file = std::filesystem::absolute(ToFilesystemPath(path)).string();
    std::string program = "xdg-open";
    char *const arguments[] = {program.data(), file.data(), nullptr};
    pid_t process = 0;
    int status = 0;
    if (posix_spawnp(&process, program.c_str(), nullptr, nullptr, arguments, environ) != 0)
        return false;
    while (waitpid(process, &status, 0) < 0)
    {
        if (errno != EINTR)
            return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool CanBePlainFile(const std::string &path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(ToFilesystemPath(path), error);
    return std::filesystem::is_regular_file(status) || !std::filesystem::exists(status);
}

} // namespace Platform
