#include "Platform.h"

#include "Descriptor.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform
{

namespace
{

constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr std::uint32_t kNanosecondsPerMillisecond = 1000000;
constexpr mode_t kAllModeBits = 07777;
/// As far as the umask lets.
constexpr mode_t kForEverybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr mode_t kForOwner = S_IRUSR | S_IWUSR;
constexpr mode_t kOfOthers = S_IRWXG | S_IRWXO;

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

int OpenFlags(std::string_view mode)
{
    const int access = mode.find('+') != std::string_view::npos ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
    return access | (mode[0] == 'w' ? O_CREAT | O_TRUNC : mode[0] == 'a' ? O_CREAT | O_APPEND : 0);
}

/// What is read has to be a file; what is written may be a device or a pipe, too.
bool IsFit(int descriptor, bool isForReading)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        return false;
    const bool isFit = S_ISREG(status.st_mode) || !(isForReading || S_ISDIR(status.st_mode));
    errno = isFit ? 0 : EINVAL;
    return isFit;
}

/// Want of memory must not be taken for a file that is not there.
void ThrowForMemory(bool succeeded)
{
    if (!succeeded && errno == ENOMEM)
        throw std::bad_alloc();
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

StreamOwner OpenStream(const std::string &path, const char *mode)
{
    const bool isForReading = *mode == 'r';
    // Without waiting for the other end of a pipe.
    Descriptor descriptor(open(NativePath(path).c_str(), OpenFlags(mode) | O_CLOEXEC | O_NONBLOCK, kForEverybody));
    ThrowForMemory(descriptor.IsOpen());
    if (!descriptor.IsOpen() || !IsFit(descriptor.Get(), isForReading))
        return nullptr;
    fcntl(descriptor.Get(), F_SETFL, fcntl(descriptor.Get(), F_GETFL) & ~O_NONBLOCK);
    StreamOwner stream(fdopen(descriptor.Get(), mode));
    ThrowForMemory(stream != nullptr);
    if (stream)
        descriptor.Release();
    return stream;
}

StreamOwner CreateStream(const std::string &path, FileAccess access)
{
    const std::string native = NativePath(path);
    Descriptor descriptor(open(native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                               access == FileAccess::OwnerOnly ? kForOwner : kForEverybody));
    ThrowForMemory(descriptor.IsOpen());
    StreamOwner stream(descriptor.IsOpen() ? fdopen(descriptor.Get(), "wb") : nullptr);
    if (stream)
        descriptor.Release();
    else if (descriptor.IsOpen())
    {
        unlink(native.c_str());
        throw std::bad_alloc(); // all that fdopen lacks
    }
    return stream;
}

FilesForOwnerOnly::FilesForOwnerOnly() : m_before(umask(kOfOthers)) {}

FilesForOwnerOnly::~FilesForOwnerOnly()
{
    umask(m_before);
}

bool SyncStream(std::FILE *stream)
{
    return std::fflush(stream) == 0 && (fsync(fileno(stream)) == 0 || errno == EINVAL || errno == ENOTSUP);
}

bool RestrictToOwner(std::FILE *stream)
{
    struct stat status = {};
    return fstat(fileno(stream), &status) == 0 &&
           ((status.st_mode & kOfOthers) == 0 ||
            fchmod(fileno(stream), status.st_mode & kAllModeBits & ~kOfOthers) == 0);
}

bool IsRestrictedToOwner(std::FILE *stream)
{
    struct stat status = {};
    return fstat(fileno(stream), &status) == 0 && (status.st_mode & kOfOthers) == 0;
}

bool ReadLineOfDescriptor(int descriptor, std::string &line)
{
    const Descriptor owner(descriptor);
    line.clear();
    char character = 0;
    ssize_t count = 0;
    while ((count = read(owner.Get(), &character, 1)) == 1 && character != '\n')
        line += character;
    return count == 1 || (count == 0 && !line.empty());
}

bool CopyOwnership(const std::string &path, std::FILE *stream, FileAccess access)
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
           fchmod(fileno(stream),
                  wanted.st_mode & (access == FileAccess::OwnerOnly ? kAllModeBits & ~kOfOthers : kAllModeBits)) == 0;
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
    tzset(); // localtime_r alone does not look whether the time zone has changed
    return localtime_r(&time, &local) != nullptr;
}

} // namespace Platform
