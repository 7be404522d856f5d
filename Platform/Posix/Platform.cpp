#include "Platform.h"

#include "CommandLine.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <optional>
#include <pthread.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace Platform
{

namespace
{

constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr std::uint32_t kNanosecondsPerMillisecond = 1000000;
constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kForEverybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

/// `path` as the system's own functions take it.
std::string NativePath(const std::string &path)
{
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

/// The folder of a native path, "." where the path names none.
std::string FolderOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, std::max(slash, std::size_t{1}));
}

/// An open file of the system's, closed by the destructor.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (IsOpen())
            close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool IsOpen() const { return m_descriptor != -1; }
    int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

bool IsTaken(mode_t mode, StreamKind kind)
{
    return S_ISREG(mode) || (kind != StreamKind::PlainFile && !S_ISDIR(mode));
}

int OpenFlags(std::string_view mode)
{
    const int access = mode.find('+') != std::string_view::npos ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
    const int creation = mode[0] == 'w' ? O_CREAT | O_TRUNC : mode[0] == 'a' ? O_CREAT | O_APPEND : 0;
    return access | creation | O_CLOEXEC | O_NOCTTY;
}

/// Opens a native path; what is no plain file is not even opened where it is not wanted, since that alone makes some
/// devices do something.
int OpenDescriptor(const std::string &path, const char *mode, StreamKind kind)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && !IsTaken(status.st_mode, kind))
    {
        errno = EINVAL;
        return -1;
    }
    const int waiting = kind == StreamKind::WaitingFile ? 0 : O_NONBLOCK;
    return open(path.c_str(), OpenFlags(mode) | waiting, kForEverybody);
}

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
    std::optional<Descriptor> writing(ends[1]);
    const HelperSignals signals;
    const pid_t helper = signals ? _Fork() : -1;
    if (helper == 0)
        BeHelper(arguments, signals.Attributes(), ends[1]);
    writing.reset();
    signals.Restore();
    if (helper == -1)
        return false;
    ReadEnd(reading.Get(), end);
    // Nothing is left to wait for where the host has done so.
    int state = 0;
    WaitFor(helper, state);
    return true;
}

/// A pthread mutex that its holder may take again; false when the system has no more.
bool InitRecursive(pthread_mutex_t &mutex)
{
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0)
        return false;
    const bool made = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutex_init(&mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return made;
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
        argument = NativePath(argument);
        argumentPointers.push_back(argument.data());
    }
    argumentPointers.push_back(nullptr);

    ChildEnd end = {0, kUnknownState};
    if (!RunByHelper(argumentPointers.data(), end) || end.error != 0)
        return false;
    exitCode = WIFEXITED(end.state) ? static_cast<std::uint32_t>(WEXITSTATUS(end.state)) : kUnknownExitCode;
    return true;
}

std::string ExecutableDirectory()
{
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0)
        return {};
    path.resize(static_cast<std::size_t>(length));
    path.resize(path.rfind('/') + 1);
    return path;
}

std::uint64_t ProcessId()
{
    return static_cast<std::uint64_t>(getpid());
}

std::string SharedLibraryFileName(const std::string &stem)
{
    return "lib" + stem + ".so";
}

SharedLibrary::SharedLibrary(const std::string &path, std::string &error)
    : m_library(dlopen(NativePath(path).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!m_library)
        error = dlerror();
}

SharedLibrary::~SharedLibrary()
{
    if (m_library)
        dlclose(m_library);
}

SharedLibrary::Symbol SharedLibrary::FindSymbol(const char *name) const
{
    return m_library ? reinterpret_cast<Symbol>(dlsym(m_library, name)) : nullptr;
}

void StayLoaded() {}

StandardOutputToError::StandardOutputToError()
{
    std::fflush(stdout);
    m_savedOutput = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (m_savedOutput != -1)
        dup2(STDERR_FILENO, STDOUT_FILENO);
}

StandardOutputToError::~StandardOutputToError()
{
    if (m_savedOutput == -1)
        return;
    std::fflush(stdout);
    dup2(m_savedOutput, STDOUT_FILENO);
    close(m_savedOutput);
}

void StandardOutputAsBytes() {}

bool ReadEnvironmentVariable(const std::string &name, std::string &value)
{
    const char *const found = std::getenv(name.c_str());
    if (!found || !*found)
        return false;
    value = found;
    return true;
}

bool WriteEnvironmentVariable(const std::string &name, const std::string &value)
{
    return (value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1)) == 0;
}

DirectoryOutcome MakeDirectory(const std::string &path)
{
    if (mkdir(NativePath(path).c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0)
        return DirectoryOutcome::Made;
    return errno == EEXIST ? DirectoryOutcome::Existed : DirectoryOutcome::Failed;
}

std::filesystem::path ToFilesystemPath(const std::string &path)
{
    return NativePath(path);
}

std::string FromFilesystemPath(const std::filesystem::path &path)
{
    return path.string();
}

bool RenameOver(const std::string &from, const std::string &to)
{
    const std::string target = NativePath(to);
    const std::string folder = FolderOf(target);
    if (std::rename(NativePath(from).c_str(), target.c_str()) != 0)
        return false;
    // Not every file system can do that, and the file has its name already.
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.IsOpen())
        fsync(descriptor.Get());
    return true;
}

bool RemoveFile(const std::string &path)
{
    return unlink(NativePath(path).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR || errno == EISDIR;
}

StreamOwner OpenStream(const std::string &path, const char *mode, StreamKind kind)
{
    const int descriptor = OpenDescriptor(NativePath(path), mode, kind);
    if (descriptor == -1)
        return nullptr;
    struct stat status = {};
    StreamOwner stream;
    // What stood there may be another thing than what was opened.
    if (fstat(descriptor, &status) == 0 && IsTaken(status.st_mode, kind) &&
        fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK) == 0)
        stream.reset(fdopen(descriptor, mode));
    if (!stream)
    {
        close(descriptor);
        errno = EINVAL;
    }
    return stream;
}

bool IsThere(const std::string &path)
{
    struct stat status = {};
    return stat(NativePath(path).c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

StreamOwner CreateStream(const std::string &path)
{
    const int descriptor =
        open(NativePath(path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kForEverybody);
    if (descriptor == -1)
        return nullptr;
    StreamOwner stream(fdopen(descriptor, "wb"));
    if (!stream)
        close(descriptor);
    return stream;
}

bool SyncStream(std::FILE *stream)
{
    return std::fflush(stream) == 0 && (fsync(fileno(stream)) == 0 || errno == EINVAL || errno == ENOTSUP);
}

bool CopyOwnership(const std::string &path, std::FILE *stream)
{
    struct stat wanted = {};
    if (stat(NativePath(path).c_str(), &wanted) != 0)
        return errno == ENOENT;
    struct stat given = {};
    if (fstat(fileno(stream), &given) != 0)
        return false;
    // In this order, because a new owner takes some of the mode away.
    const bool sameOwner = given.st_uid == wanted.st_uid && given.st_gid == wanted.st_gid;
    return (sameOwner || fchown(fileno(stream), wanted.st_uid, wanted.st_gid) == 0) &&
           fchmod(fileno(stream), wanted.st_mode & kAllModeBits) == 0;
}

FileLock::FileLock(const std::string &path, std::uint32_t milliseconds)
    : m_system(open(FolderOf(NativePath(path)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    constexpr std::uint32_t kPause = 5;
    const auto isHeldByOthers = [descriptor = static_cast<int>(m_system)] {
        return descriptor != -1 && flock(descriptor, LOCK_EX | LOCK_NB) != 0 &&
               (errno == EWOULDBLOCK || errno == EINTR);
    };
    for (std::uint32_t waited = 0; isHeldByOthers(); waited += kPause)
    {
        m_granted = waited < milliseconds;
        if (!m_granted)
            return;
        const timespec pause = {0, static_cast<long>(kPause) * kNanosecondsPerMillisecond};
        nanosleep(&pause, nullptr);
    }
}

FileLock::~FileLock()
{
    if (m_system != -1)
        close(static_cast<int>(m_system));
}

MutexHandle MakeMutex(const char * /*name*/)
{
    std::unique_ptr<pthread_mutex_t> mutex(new (std::nothrow) pthread_mutex_t);
    return mutex && InitRecursive(*mutex) ? mutex.release() : nullptr;
}

bool WaitMutex(MutexHandle mutex)
{
    return mutex && pthread_mutex_lock(static_cast<pthread_mutex_t *>(mutex)) == 0;
}

void ReleaseMutexHold(MutexHandle mutex)
{
    if (mutex)
        pthread_mutex_unlock(static_cast<pthread_mutex_t *>(mutex));
}

void CloseMutex(MutexHandle mutex)
{
    const std::unique_ptr<pthread_mutex_t> owned(static_cast<pthread_mutex_t *>(mutex));
    if (owned)
        pthread_mutex_destroy(owned.get());
}

bool MonotonicMilliseconds(std::uint64_t &milliseconds)
{
    timespec now = {};
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return false;
    milliseconds = static_cast<std::uint64_t>(now.tv_sec) * kMillisecondsPerSecond +
                   static_cast<std::uint64_t>(now.tv_nsec) / kNanosecondsPerMillisecond;
    return true;
}

bool LocalTime(std::time_t time, std::tm &local)
{
    tzset();
    return localtime_r(&time, &local) != nullptr;
}

} // namespace Platform
