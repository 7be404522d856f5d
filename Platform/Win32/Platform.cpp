#include "Platform.h"

#include "FilesystemPath.h"

#define WIN32_LEAN_AND_MEAN

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <io.h>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <windows.h>

namespace Platform
{

namespace
{

constexpr DWORD kCreationFlags = CREATE_NO_WINDOW | NORMAL_PRIORITY_CLASS;
constexpr double kMillisecondsPerSecond = 1000.0;
constexpr std::size_t kLongestPath = 32768;
constexpr int kRenameAttempts = 10;
constexpr DWORD kRenamePause = 20; // milliseconds

struct CloseSystemHandle
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using HandleOwner = std::unique_ptr<void, CloseSystemHandle>;

std::wstring ToWide(UINT codePage, std::string_view text)
{
    if (text.empty())
        return {};
    if (text.size() > INT_MAX)
        throw std::bad_alloc();
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), size);
    return wide;
}

/// `path` from the drive on, with backslashes; `path` itself where the system does not tell.
std::string FullPath(const std::string &path)
{
    std::string full(kLongestPath, '\0');
    const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length < full.size() ? length : 0);
    return full.empty() ? path : full;
}

/// A name for the mutex of a file, the same for every spelling of its path. Two files with the same name only wait for
/// each other without need.
std::string LockName(const std::string &path)
{
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (const char character : FullPath(path))
    {
        const bool isCapital = character >= 'A' && character <= 'Z';
        hash = (hash ^ static_cast<unsigned char>(isCapital ? character - 'A' + 'a' : character)) * 0x100000001B3;
    }
    return "BiosConfigModule-" + std::to_string(hash);
}

} // namespace

bool RunCommand(const std::string &commandLine, std::uint32_t &exitCode)
{
    // CreateProcessA may write into the command line.
    std::string writable = commandLine;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    if (!CreateProcessA(nullptr, writable.data(), nullptr, nullptr, TRUE, kCreationFlags, nullptr, nullptr, &startup,
                        &child))
        return false;
    const HandleOwner thread(child.hThread);
    const HandleOwner process(child.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD code = kUnknownExitCode;
    exitCode = GetExitCodeProcess(process.get(), &code) ? code : kUnknownExitCode;
    return true;
}

std::string ExecutableDirectory()
{
    std::string path(kLongestPath, '\0');
    path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
    path.resize(path.rfind('\\') + 1);
    return path;
}

std::uint64_t ProcessId()
{
    return GetCurrentProcessId();
}

std::string SharedLibraryFileName(const std::string &stem)
{
    return stem + ".dll";
}

SharedLibrary::SharedLibrary(const std::string &path, std::string &error)
{
    // A library that cannot be loaded is told to the caller, not to the user in a box that waits for a click.
    DWORD errorMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &errorMode);
    m_library = LoadLibraryExA(FullPath(path).c_str(), nullptr,
                               LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    const DWORD code = GetLastError();
    SetThreadErrorMode(errorMode, nullptr);
    if (!m_library)
        error = path + ": " + std::system_category().message(static_cast<int>(code));
}

SharedLibrary::~SharedLibrary()
{
    if (m_library)
        FreeLibrary(static_cast<HMODULE>(m_library));
}

SharedLibrary::Symbol SharedLibrary::FindSymbol(const char *name) const
{
    return m_library ? reinterpret_cast<Symbol>(GetProcAddress(static_cast<HMODULE>(m_library), name)) : nullptr;
}

void StayLoaded()
{
    HMODULE library = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const char *>(&StayLoaded), &library);
}

StandardOutputToError::StandardOutputToError()
{
    std::fflush(stdout);
    m_savedOutput = _dup(_fileno(stdout));
    if (m_savedOutput != -1)
        _dup2(_fileno(stderr), _fileno(stdout));
}

StandardOutputToError::~StandardOutputToError()
{
    if (m_savedOutput == -1)
        return;
    std::fflush(stdout);
    _dup2(m_savedOutput, _fileno(stdout));
    _close(m_savedOutput);
}

void StandardOutputAsBytes()
{
    std::fflush(stdout);
    _setmode(_fileno(stdout), _O_BINARY);
}

bool ReadEnvironmentVariable(const std::string &name, std::string &value)
{
    const DWORD size = GetEnvironmentVariableA(name.c_str(), nullptr, 0);
    if (size == 0)
        return false;
    std::string found(size, '\0');
    const DWORD length = GetEnvironmentVariableA(name.c_str(), found.data(), size);
    if (length == 0 || length >= size)
        return false;
    found.resize(length);
    value = std::move(found);
    return true;
}

bool WriteEnvironmentVariable(const std::string &name, const std::string &value)
{
    return SetEnvironmentVariableA(name.c_str(), value.empty() ? nullptr : value.c_str()) != 0;
}

DirectoryOutcome MakeDirectory(const std::string &path)
{
    if (CreateDirectoryA(path.c_str(), nullptr))
        return DirectoryOutcome::Made;
    return GetLastError() == ERROR_ALREADY_EXISTS ? DirectoryOutcome::Existed : DirectoryOutcome::Failed;
}

std::filesystem::path ToFilesystemPath(const std::string &path)
{
    return ToWide(CP_ACP, path);
}

std::string FromFilesystemPath(const std::filesystem::path &path)
{
    const std::wstring &wide = path.native();
    const int length = static_cast<int>(wide.size());
    std::string text(
        static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), length, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    return text;
}

bool RenameOver(const std::string &from, const std::string &to)
{
    for (int attempt = 1;; ++attempt)
    {
        if (ReplaceFileA(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr))
            return true;
        if (GetLastError() == ERROR_FILE_NOT_FOUND &&
            MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return true;
        // A scanner of files has a new one open for a moment.
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
                            error == ERROR_UNABLE_TO_REMOVE_REPLACED;
        if (attempt == kRenameAttempts || !isHeld)
            return false;
        Sleep(kRenamePause);
    }
}

bool RemoveFile(const std::string &path)
{
    if (DeleteFileA(path.c_str()))
        return true;
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME)
        return true;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

StreamOwner OpenStream(const std::string &path, const char *mode)
{
    StreamOwner stream(std::fopen(path.c_str(), mode));
    if (!stream && errno == ENOMEM)
        throw std::bad_alloc(); // must not be taken for a file that is not there
    if (stream)
        SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream.get()))), HANDLE_FLAG_INHERIT, 0);
    return stream;
}

StreamOwner CreateStream(const std::string &path, FileAccess /*access*/)
{
    const int descriptor =
        _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (descriptor == -1)
        return nullptr;
    StreamOwner stream(_fdopen(descriptor, "wb"));
    if (!stream)
    {
        _close(descriptor);
        _unlink(path.c_str());
        throw std::bad_alloc(); // all that _fdopen lacks
    }
    return stream;
}

FilesForOwnerOnly::FilesForOwnerOnly() : m_before(0) {}

FilesForOwnerOnly::~FilesForOwnerOnly()
{
    static_cast<void>(m_before);
}

bool SyncStream(std::FILE *stream)
{
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    return std::fflush(stream) == 0 && (GetFileType(file) != FILE_TYPE_DISK || FlushFileBuffers(file));
}

bool RestrictToOwner(std::FILE * /*stream*/)
{
    return true;
}

bool IsRestrictedToOwner(std::FILE * /*stream*/)
{
    return true;
}

bool ReadLineOfDescriptor(int descriptor, std::string &line)
{
    line.clear();
    char character = 0;
    int count = 0;
    while ((count = _read(descriptor, &character, 1)) == 1 && character != '\n')
        line += character;
    _close(descriptor);
    if (line.ends_with('\r'))
        line.pop_back();
    return count == 1 || (count == 0 && !line.empty());
}

bool CopyOwnership(const std::string & /*path*/, std::FILE * /*stream*/, FileAccess /*access*/)
{
    return true;
}

FileLock::FileLock(const std::string &path, std::uint32_t milliseconds)
    : m_system(reinterpret_cast<std::intptr_t>(CreateMutexA(nullptr, FALSE, LockName(path).c_str())))
{
    if (m_system)
        m_granted = WaitForSingleObject(reinterpret_cast<HANDLE>(m_system), milliseconds) != WAIT_TIMEOUT;
}

FileLock::~FileLock()
{
    const auto mutex = reinterpret_cast<HANDLE>(m_system);
    if (!mutex)
        return;
    if (m_granted)
        ReleaseMutex(mutex);
    CloseHandle(mutex);
}

MutexHandle MakeMutex(const char *name)
{
    const HANDLE named = name && *name ? CreateMutexA(nullptr, FALSE, name) : nullptr;
    // Another user's mutex, or another kind of object, may have the name.
    return named ? named : CreateMutexA(nullptr, FALSE, nullptr);
}

bool WaitMutex(MutexHandle mutex)
{
    if (!mutex)
        return false;
    const DWORD outcome = WaitForSingleObject(mutex, INFINITE);
    return outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
}

void ReleaseMutexHold(MutexHandle mutex)
{
    if (mutex)
        ReleaseMutex(mutex);
}

void CloseMutex(MutexHandle mutex)
{
    if (mutex)
        CloseHandle(mutex);
}

bool MonotonicMilliseconds(std::uint64_t &milliseconds)
{
    LARGE_INTEGER counter = {};
    LARGE_INTEGER frequency = {};
    if (!QueryPerformanceCounter(&counter) || !QueryPerformanceFrequency(&frequency) || frequency.QuadPart == 0)
        return false;
    milliseconds = static_cast<std::uint64_t>(static_cast<double>(counter.QuadPart) /
                                              static_cast<double>(frequency.QuadPart) * kMillisecondsPerSecond);
    return true;
}

bool LocalTime(std::time_t time, std::tm &local)
{
    return localtime_s(&local, &time) == 0;
}

std::u16string Utf8ToUtf16(std::string_view text)
{
    const std::wstring units = ToWide(CP_UTF8, text);
    return {units.begin(), units.end()};
}

} // namespace Platform
