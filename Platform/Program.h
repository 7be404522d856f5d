#pragma once

#include "Platform.h"

#include <cstdio>
#include <string>

/// What a program asks of the system and a library leaves alone: it concerns the whole process, its signals and its
/// console.
namespace Platform
{

/// While it lives, an end from outside (Ctrl-C, a closed console, SIGHUP, SIGINT, SIGTERM, SIGPIPE) also ends all
/// programs that this process has started, with all that those have started, and removes what RemovedWhenInterrupted
/// names; then it ends the process as it would have. There is one at a time, in the only thread of a process. Windows:
/// SetConsoleCtrlHandler, a job that ends with its last handle. POSIX: sigaction, PR_SET_CHILD_SUBREAPER.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    void *m_job = nullptr;
};

/// A file, or a folder with nothing else in it than such files, that goes when an end from outside comes during the
/// object's life. A few at a time; further ones stay.
class RemovedWhenInterrupted
{
public:
    /// `stream` is what this process has open there, or null.
    explicit RemovedWhenInterrupted(const std::string &path, std::FILE *stream = nullptr);
    ~RemovedWhenInterrupted();
    RemovedWhenInterrupted(const RemovedWhenInterrupted &) = delete;
    RemovedWhenInterrupted &operator=(const RemovedWhenInterrupted &) = delete;

private:
    std::size_t m_place;
};

/// This program, running once more. There is one at a time, during the life of an Interruption.
class Worker
{
public:
    /// Starts it with `arguments`, those that main was given, and this process's environment. What it writes to
    /// standard output goes to `output`, what it writes to standard error to `messages`; null stands for where it goes
    /// for this process.
    Worker(char *const *arguments, std::FILE *output, std::FILE *messages = nullptr);
    /// Ends it where it still runs.
    ~Worker() { End(); }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    /// False when it could not be started.
    explicit operator bool() const { return m_system != 0; }

    /// Waits up to `seconds` for its end and stores its exit code as RunCommand does. False when the time was up.
    bool Wait(std::uint32_t seconds, std::uint32_t &exitCode);

    /// Ends it and whatever it has started.
    void End();

private:
    std::intptr_t m_system = 0;
    std::intptr_t m_job = 0;
};

/// While it lives, a console shows what is written to it as UTF-8. What is written to a file or a pipe stays the bytes
/// that it is. Windows: SetConsoleOutputCP. POSIX: nothing to do.
class ConsoleInUtf8
{
public:
    ConsoleInUtf8();
    ~ConsoleInUtf8();
    ConsoleInUtf8(const ConsoleInUtf8 &) = delete;
    ConsoleInUtf8 &operator=(const ConsoleInUtf8 &) = delete;

private:
    unsigned m_before = 0;
};

/// Has a standard stream that the process was started without lead nowhere: a file that is opened later must not be
/// taken for it. To write there fails. POSIX: open. Windows: nothing to do, such files get other numbers.
void OccupyStandardStreams();

/// Whether somebody sits in front of `stream`. Windows: GetConsoleMode. POSIX: isatty.
bool IsTerminal(std::FILE *stream);

/// How many columns the terminal behind `stream` has; 0 where there is none or it does not tell. Windows:
/// GetConsoleScreenBufferInfo. POSIX: ioctl.
std::size_t TerminalColumns(std::FILE *stream);

/// Has the terminal behind `stream` understand escape sequences; false where it does not. Windows: SetConsoleMode.
/// POSIX: nothing to do, TERM tells.
bool EnableEscapeSequences(std::FILE *stream);

/// This machine's name in its network; empty when the system does not tell. Windows: GetComputerNameA. POSIX:
/// gethostname.
std::string MachineName();

/// Whether the file at `path` can be started as a program. Windows: whether it can be read. POSIX: access.
bool IsExecutable(const std::string &path);

/// Whether there is a directory at `path`, or a link to one. Windows: GetFileAttributesA, which knows all spellings.
bool IsDirectory(const std::string &path);

/// `directory` in the form that a file name is put behind: with its final separator. Windows: a drive alone (C:) means
/// its current directory and stays so, and a path of the form \\?\ takes no slash.
std::string AsPrefix(const std::string &directory);

/// Whether a plain file stands at `path`, or nothing, so that a file can take its place. Windows: nor has it the name
/// of a device, such as NUL or COM1.
bool CanBePlainFile(const std::string &path);

} // namespace Platform
