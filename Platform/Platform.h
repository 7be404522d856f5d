#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

/// The whole contract with the operating system; one implementation per system stands beside it.
///
/// Path texts and command lines keep their backslashes on both systems. The POSIX side turns `\` into `/` at the
/// moment a file is opened, a directory made or a program started. Nothing here throws but std::bad_alloc.
namespace Platform
{

// Programs

/// Runs `commandLine` (ANSI code page on Windows; the program first, quoted where it holds blanks), waits without
/// limit and stores the exit code. The child shows no window and inherits environment, current directory and
/// standard handles. Returns false when the program could not be started; `exitCode` is then unchanged. A child
/// ended by a signal, or one whose exit code cannot be read, gives `kUnknownExitCode`. Windows: CreateProcessA,
/// WaitForSingleObject, GetExitCodeProcess. POSIX: posix_spawn and waitpid; where SIGCHLD has not its default effect or
/// the process has several threads, in a helper process, a copy of this one with no other work: a host that ignores the
/// signal, or waits for any child, would else lose the exit code. The copying costs about as much as a fork.
bool RunCommand(const std::string &commandLine, std::uint32_t &exitCode);

/// The exit code given for a child that ended without one of its own.
constexpr std::uint32_t kUnknownExitCode = 0xFFFFFFFF;

/// The directory of the running program's file, with a final separator; empty when the system does not tell.
std::string ExecutableDirectory();

/// The number that the system has given this process.
std::uint64_t ProcessId();

/// The file name of the shared library `stem`: `stem`.dll on Windows, lib`stem`.so elsewhere.
std::string SharedLibraryFileName(const std::string &stem);

/// A shared library loaded at run time; unloaded by the destructor.
/// Windows: LoadLibraryExA, GetProcAddress; those that the library needs come from its own folder, the program's and
/// the system's, never from the current one.
/// POSIX: dlopen (all symbols resolved at once), dlsym.
class SharedLibrary
{
public:
    /// Loads the library at `path`; on failure `error` says why and the object is false.
    SharedLibrary(const std::string &path, std::string &error);
    ~SharedLibrary();
    SharedLibrary(const SharedLibrary &) = delete;
    SharedLibrary &operator=(const SharedLibrary &) = delete;

    explicit operator bool() const { return m_library != nullptr; }

    /// The exported function `name`, or null.
    template <typename Function>
    Function *Find(const char *name) const
    {
        return reinterpret_cast<Function *>(FindSymbol(name));
    }

private:
    using Symbol = void (*)();
    Symbol FindSymbol(const char *name) const;

    void *m_library = nullptr;
};

/// Keeps the shared library that the calling code is part of loaded until the process ends. Windows:
/// GetModuleHandleExA. POSIX: nothing, a library is linked so that it stays, where that matters.
void StayLoaded();

/// While it lives, what the process and its children write to standard output goes to standard error instead.
class StandardOutputToError
{
public:
    StandardOutputToError();
    ~StandardOutputToError();
    StandardOutputToError(const StandardOutputToError &) = delete;
    StandardOutputToError &operator=(const StandardOutputToError &) = delete;

private:
    int m_savedOutput;
};

/// From now on what the program writes to standard output goes out byte for byte.
/// Windows: _setmode. POSIX: nothing to do.
void StandardOutputAsBytes();

// Environment

/// Stores the value of the environment variable `name`. Returns false, with `value` unchanged, when the variable is
/// not set or empty. Windows: GetEnvironmentVariableA. POSIX: getenv.
bool ReadEnvironmentVariable(const std::string &name, std::string &value);

/// Sets the environment variable `name` of this process and of the programs that it starts; an empty value removes the
/// variable. Returns false when the system refuses. Windows: SetEnvironmentVariableA. POSIX: setenv, unsetenv.
bool WriteEnvironmentVariable(const std::string &name, const std::string &value);

// Directories and files

enum class DirectoryOutcome
{
    Made,
    Existed,
    Failed
};

/// Makes the last directory of `path`; those above it must exist. Something else of that name counts as existing, as
/// it does for CreateDirectoryA. Windows: CreateDirectoryA. POSIX: mkdir, for user, group and others as the umask
/// lets.
DirectoryOutcome MakeDirectory(const std::string &path);

/// Gives the file at `from` the name `to` in one step, replacing a file of that name; on Windows its access list stays.
/// The step is on the disk when the call returns, where the system can do that. Returns false, with both left as they
/// were, when the system refuses. Windows: ReplaceFileA or, where nothing is to be replaced, MoveFileExA, again for a
/// fifth of a second while another program has one of the files open. POSIX: rename, fsync of the folder.
bool RenameOver(const std::string &from, const std::string &to);

/// Removes the file at `path`, if there is one; false when there still is one. A directory stays and does not count.
/// Windows: DeleteFileA. POSIX: unlink.
bool RemoveFile(const std::string &path);

/// Who may read and write a new file.
enum class FileAccess
{
    /// Whoever the umask lets, or those who may have the file that it replaces.
    Usual,
    /// Its owner alone. Windows: as Usual, the folder's access list decides.
    OwnerOnly
};

struct CloseStream
{
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using StreamOwner = std::unique_ptr<std::FILE, CloseStream>;

/// Opens a stdio stream as fopen does ("rb", "r+b", "wb", "ab"), without waiting; children do not inherit it. Null when
/// it cannot be opened, also for a directory, for anything but a file that is to be read, and for a pipe that is to be
/// written and that nobody reads. Throws std::bad_alloc where there is no memory for it: the file may well be there.
StreamOwner OpenStream(const std::string &path, const char *mode);

/// Creates a file that is not there yet, for writing bytes; a link of that name is not followed. Null, with EEXIST in
/// errno where something of that name is there, when it cannot be created. Throws std::bad_alloc, and leaves none,
/// where there is no memory for it. Windows: _open. POSIX: open.
StreamOwner CreateStream(const std::string &path, FileAccess access = FileAccess::Usual);

/// Lets nobody but its owner have the file open as `stream`; false when the system refuses. POSIX: fchmod. Windows:
/// nothing to do.
bool RestrictToOwner(std::FILE *stream);

/// Whether nobody but its owner may read or write the file open as `stream`. POSIX: fstat. Windows: always.
bool IsRestrictedToOwner(std::FILE *stream);

/// While it lives, the files that this process and its children make are for their owner alone. POSIX: umask. Windows:
/// nothing to do.
class FilesForOwnerOnly
{
public:
    FilesForOwnerOnly();
    ~FilesForOwnerOnly();
    FilesForOwnerOnly(const FilesForOwnerOnly &) = delete;
    FilesForOwnerOnly &operator=(const FilesForOwnerOnly &) = delete;

private:
    unsigned m_before;
};

/// Has everything that was written to `stream` stored on the disk; false when that fails. A stream that has no disk
/// behind it counts as stored. Windows: FlushFileBuffers. POSIX: fsync.
bool SyncStream(std::FILE *stream);

/// Gives the file open as `stream` the mode, owner and group of the one at `path`, of the mode the owner's part where
/// `access` says so; true also when there is none. False when the system does not let the process do that. Windows:
/// nothing to do, RenameOver keeps them.
bool CopyOwnership(const std::string &path, std::FILE *stream, FileAccess access = FileAccess::Usual);

/// Reads the first line, without its end, from a file that this process has open under `descriptor`, and closes it.
/// Returns false when nothing can be read there. POSIX: read. Windows: _read.
bool ReadLineOfDescriptor(int descriptor, std::string &line);

/// Replaces `bytes` with what `stream` holds up to its end. Returns false when that cannot be read.
bool ReadBytes(std::FILE *stream, std::string &bytes);

/// What some editors put in front of a text in UTF-8.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Reads a whole text file; every pair of carriage return and line feed arrives as one line feed, a UTF-8 byte-order
/// mark in front of the text does not arrive. Returns false when the file cannot be opened or read; `text` is then
/// unchanged.
bool ReadTextFile(const std::string &path, std::string &text);

/// Writes `text` to a binary stream; every line feed goes out as carriage return and line feed. Returns false when not
/// everything could be written.
bool WriteText(std::FILE *stream, std::string_view text);

/// A text file being written, as WriteText writes.
class TextFileWriter
{
public:
    /// Creates the file at `path` or empties an existing one. Returns false when that fails; writes then do nothing.
    bool Open(const std::string &path);

    bool IsOpen() const { return m_stream != nullptr; }

    /// Returns false when nothing is open or not everything could be written.
    bool Write(std::string_view text);

    /// Closes the file; false when what was still buffered could not be written.
    bool Close();

private:
    StreamOwner m_stream;
};

/// Keeps other processes, and other objects of this kind, away from the file at `path` while it lives. It goes with the
/// process, however that ends, and leaves nothing behind. Where the system has no such locks, everybody gets one.
/// Windows: a mutex of the session named after the path. POSIX: flock on the file's folder.
class FileLock
{
public:
    /// Waits up to `milliseconds` for the others.
    FileLock(const std::string &path, std::uint32_t milliseconds);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    /// False when the time was up.
    explicit operator bool() const { return m_granted; }

private:
    std::intptr_t m_system;
    bool m_granted = true;
};

// Mutexes

/// A mutex of the system: a HANDLE on Windows. The thread that holds it may take it again.
using MutexHandle = void *;

/// Creates a mutex that nobody holds; null on failure, also without memory. On Windows it is named (CreateMutexA),
/// of the whole session, and a null or empty `name`, or one that cannot be had, gives one without a name; on POSIX it
/// belongs to the process and the name is not used.
MutexHandle MakeMutex(const char *name);

// The next two are called around work of a few instructions.

/// Waits without limit until the calling thread holds `mutex`. Returns false for null or when the wait fails.
bool WaitMutex(MutexHandle mutex);

/// Lets go of `mutex` once; the calling thread must hold it. Null is ignored.
void ReleaseMutexHold(MutexHandle mutex);

/// Gives `mutex` back to the system; nobody may hold it. Null is ignored.
void CloseMutex(MutexHandle mutex);

} // namespace Platform

#include "MutexCalls.h" // the system's own, which may define the two above inline

namespace Platform
{

/// Holds a mutex for the life of the object.
class MutexLock
{
public:
    explicit MutexLock(MutexHandle mutex) : m_held(WaitMutex(mutex) ? mutex : nullptr) {}
    ~MutexLock() { ReleaseMutexHold(m_held); }
    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

    explicit operator bool() const { return m_held != nullptr; }

private:
    MutexHandle m_held;
};

// Time

/// Stores the milliseconds since a fixed origin of a clock that never goes back. Returns false when it cannot be read.
/// Windows: QueryPerformanceCounter and QueryPerformanceFrequency. POSIX: clock_gettime.
bool MonotonicMilliseconds(std::uint64_t &milliseconds);

/// Breaks `time` down into local time. Returns false when the system cannot.
bool LocalTime(std::time_t time, std::tm &local);

// Text

/// Decodes UTF-8 into UTF-16 over the whole length, NUL bytes included. Every ill-formed sequence becomes U+FFFD; how
/// many a sequence gives is the system's choice. Windows: MultiByteToWideChar with code page 65001 and no flags.
/// POSIX: one for each maximal part of a well-formed sequence.
std::u16string Utf8ToUtf16(std::string_view text);

} // namespace Platform
