#include "Platform.h"

#include "CommandLine.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <spawn.h>
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

/// `path` as the system's own functions take it.
std::string NativePath(const std::string &path)
{
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

/// Waits for `child` and gives its exit code, also when the wait is interrupted.
std::uint32_t WaitForExitCode(pid_t child)
{
    int state = 0;
    pid_t ended = -1;
    do
        ended = waitpid(child, &state, 0);
    while (ended == -1 && errno == EINTR);
    if (ended != child || !WIFEXITED(state))
        return kUnknownExitCode;
    return static_cast<std::uint32_t>(WEXITSTATUS(state));
}

bool IsDirectory(std::FILE *stream)
{
    struct stat status = {};
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
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

    pid_t child = 0;
    if (posix_spawn(&child, arguments[0].c_str(), nullptr, nullptr, argumentPointers.data(), environ) != 0)
        return false;
    exitCode = WaitForExitCode(child);
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
    return std::rename(NativePath(from).c_str(), NativePath(to).c_str()) == 0;
}

bool RemoveFile(const std::string &path)
{
    return unlink(NativePath(path).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR || errno == EISDIR;
}

StreamOwner OpenStream(const std::string &path, const char *mode)
{
    StreamOwner stream(std::fopen(NativePath(path).c_str(), (std::string(mode) + "e").c_str()));
    if (stream && IsDirectory(stream.get()))
        stream.reset();
    return stream;
}

MutexHandle MakeMutex(const char * /*name*/)
{
    std::unique_ptr<pthread_mutex_t> mutex(new (std::nothrow) pthread_mutex_t);
    return mutex && InitRecursive(*mutex) ? mutex.release() : nullptr;
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
    return localtime_r(&time, &local) != nullptr;
}

} // namespace Platform
