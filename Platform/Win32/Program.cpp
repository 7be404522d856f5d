#include "Program.h"

#define WIN32_LEAN_AND_MEAN

#include <array>
#include <cstring>
#include <io.h>
#include <memory>
#include <windows.h>

namespace Platform
{

namespace
{

constexpr std::size_t kLongestPath = 32768;
constexpr int kRemoveAttempts = 50;
constexpr DWORD kRemovePause = 20; // milliseconds
constexpr DWORD kMillisecondsPerSecond = 1000;

struct Removed
{
    std::array<char, kLongestPath> path;
    std::FILE *stream;
    volatile bool isUsed;
};
std::array<Removed, 8> removedFiles;

/// Of the worker that runs, for the thread that is told of Ctrl-C.
HANDLE workerJob = nullptr;
UINT codePageBefore = 0;

HANDLE HandleOf(std::FILE *stream)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

/// A job whose processes end with its last handle, or stay where `ending` is false.
void SetJobEnding(HANDLE job, bool ending)
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = ending ? JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE : 0;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

HANDLE MakeEndingJob()
{
    const HANDLE job = CreateJobObjectA(nullptr, nullptr);
    if (job)
        SetJobEnding(job, true);
    return job;
}

/// An open file cannot be removed, and a process that has ended may take a moment to let go of it.
void Remove(const Removed &file)
{
    if (file.stream)
        CloseHandle(HandleOf(file.stream));
    for (int attempt = 0; attempt < kRemoveAttempts; ++attempt)
    {
        if (DeleteFileA(file.path.data()) || RemoveDirectoryA(file.path.data()))
            return;
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
            return;
        Sleep(kRemovePause);
    }
}

/// Called in a thread of its own. What follows is the end of this process and, with it, of its job.
BOOL WINAPI HandleEnd(DWORD /*event*/)
{
    if (workerJob)
        TerminateJobObject(workerJob, kUnknownExitCode);
    for (auto file = removedFiles.rbegin(); file != removedFiles.rend(); ++file)
    {
        if (file->isUsed)
            Remove(*file);
    }
    if (codePageBefore != 0)
        SetConsoleOutputCP(codePageBefore);
    return FALSE;
}

/// This process's standard handle, made so that a child inherits it.
HANDLE InheritedHandle(DWORD which)
{
    const HANDLE handle = GetStdHandle(which);
    if (handle && handle != INVALID_HANDLE_VALUE)
        SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    return handle;
}

struct CloseSystemHandle
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using HandleOwner = std::unique_ptr<void, CloseSystemHandle>;

/// A second handle of what `stream` leads to, which a child inherits; null when there is none.
HANDLE InheritableCopy(std::FILE *stream)
{
    HANDLE copy = nullptr;
    const HANDLE process = GetCurrentProcess();
    DuplicateHandle(process, HandleOf(stream), process, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS);
    return copy;
}

bool IsConsole(DWORD which)
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(which), &mode) != 0;
}

} // namespace

Interruption::Interruption() : m_job(MakeEndingJob())
{
    if (m_job)
        AssignProcessToJobObject(m_job, GetCurrentProcess());
    SetConsoleCtrlHandler(HandleEnd, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(HandleEnd, FALSE);
    if (!m_job)
        return;
    // An end as it should be leaves running what was to run on.
    SetJobEnding(m_job, false);
    CloseHandle(m_job);
}

RemovedWhenInterrupted::RemovedWhenInterrupted(const std::string &path, std::FILE *stream)
    : m_place(removedFiles.size())
{
    for (std::size_t place = 0; place < removedFiles.size() && path.size() < kLongestPath; ++place)
    {
        if (removedFiles[place].isUsed)
            continue;
        std::memcpy(removedFiles[place].path.data(), path.c_str(), path.size() + 1);
        removedFiles[place].stream = stream;
        removedFiles[place].isUsed = true;
        m_place = place;
        break;
    }
}

RemovedWhenInterrupted::~RemovedWhenInterrupted()
{
    if (m_place < removedFiles.size())
        removedFiles[m_place].isUsed = false;
}

Worker::Worker(char *const * /*arguments*/, std::FILE *output, std::FILE *messages)
{
    std::array<wchar_t, kLongestPath> program = {};
    const DWORD length = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    if (length == 0 || length == program.size())
        return;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = InheritedHandle(STD_INPUT_HANDLE);
    const HandleOwner outputCopy(output ? InheritableCopy(output) : nullptr);
    const HandleOwner messagesCopy(messages ? InheritableCopy(messages) : nullptr);
    if ((output && !outputCopy) || (messages && !messagesCopy))
        return;
    startup.hStdOutput = output ? outputCopy.get() : InheritedHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = messages ? messagesCopy.get() : InheritedHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION child = {};
    // The arguments as they came; the worker runs when it is in the job, and all that it starts is, too.
    const BOOL started = CreateProcessW(program.data(), GetCommandLineW(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                                        nullptr, nullptr, &startup, &child);
    if (!started)
        return;
    workerJob = MakeEndingJob();
    if (workerJob)
        AssignProcessToJobObject(workerJob, child.hProcess);
    ResumeThread(child.hThread);
    CloseHandle(child.hThread);
    m_system = reinterpret_cast<std::intptr_t>(child.hProcess);
    m_job = reinterpret_cast<std::intptr_t>(workerJob);
}

bool Worker::Wait(std::uint32_t seconds, std::uint32_t &exitCode)
{
    const auto process = reinterpret_cast<HANDLE>(m_system);
    if (WaitForSingleObject(process, seconds * kMillisecondsPerSecond) != WAIT_OBJECT_0)
        return false;
    DWORD code = kUnknownExitCode;
    exitCode = GetExitCodeProcess(process, &code) ? code : kUnknownExitCode;
    // What the worker has left running runs on.
    const auto job = reinterpret_cast<HANDLE>(m_job);
    if (job)
        SetJobEnding(job, false);
    return true;
}

void Worker::End()
{
    if (m_system == 0)
        return;
    const auto process = reinterpret_cast<HANDLE>(m_system);
    const auto job = reinterpret_cast<HANDLE>(m_job);
    const bool runs = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    workerJob = nullptr;
    if (runs && !(job && TerminateJobObject(job, kUnknownExitCode)))
        TerminateProcess(process, kUnknownExitCode);
    WaitForSingleObject(process, kRemoveAttempts * kRemovePause);
    if (job)
        CloseHandle(job);
    CloseHandle(process);
    m_system = 0;
}

ConsoleInUtf8::ConsoleInUtf8()
{
    if (!IsConsole(STD_OUTPUT_HANDLE) && !IsConsole(STD_ERROR_HANDLE))
        return;
    m_before = GetConsoleOutputCP();
    codePageBefore = m_before;
    SetConsoleOutputCP(CP_UTF8);
}

ConsoleInUtf8::~ConsoleInUtf8()
{
    codePageBefore = 0;
    if (m_before != 0)
        SetConsoleOutputCP(m_before);
}

void OccupyStandardStreams() {}

bool IsTerminal(std::FILE *stream)
{
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

std::size_t TerminalColumns(std::FILE *stream)
{
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!GetConsoleScreenBufferInfo(HandleOf(stream), &info))
        return 0;
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

bool EnableEscapeSequences(std::FILE *stream)
{
    const HANDLE console = HandleOf(stream);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::string MachineName()
{
    std::array<char, MAX_COMPUTERNAME_LENGTH + 1> name = {};
    DWORD size = static_cast<DWORD>(name.size());
    return GetComputerNameA(name.data(), &size) ? name.data() : "";
}

bool IsExecutable(const std::string &path)
{
    return OpenStream(path, "rb") != nullptr;
}

bool IsDirectory(const std::string &path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string AsPrefix(const std::string &directory)
{
    if (directory.find_last_of("/\\") == directory.size() - 1 || (directory.size() == 2 && directory[1] == ':'))
        return directory;
    return directory + (directory.starts_with("\\\\?\\") ? '\\' : '/');
}

bool CanBePlainFile(const std::string &path)
{
    std::array<char, kLongestPath> full = {};
    const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    const bool isDevice = length != 0 && std::string_view(full.data()).starts_with("\\\\.\\");
    return !isDevice && !IsDirectory(path);
}

} // namespace Platform
