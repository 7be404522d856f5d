#include "NativeFolder.h"

#include "Descriptor.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>

namespace Platform
{

namespace
{

constexpr int kHeldBack[] = {SIGHUP, SIGINT, SIGTERM};

std::error_code LastError()
{
    if (errno == ENOMEM)
        throw std::bad_alloc();
    return {errno, std::generic_category()};
}

std::error_code ErrorOf(std::errc error)
{
    return std::make_error_code(error);
}

/// Whether every part of `path` is a name.
bool IsBelow(std::string_view path)
{
    while (true)
    {
        const std::string_view part = path.substr(0, path.find('/'));
        if (part.empty() || part == "." || part == ".." || part.find('\0') != std::string_view::npos)
            return false;
        if (part.size() == path.size())
            return true;
        path.remove_prefix(part.size() + 1);
    }
}

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};
using FolderOwner = std::unique_ptr<DIR, CloseFolder>;

bool IsFolder(int parent, const dirent &entry)
{
    if (entry.d_type == DT_DIR || entry.d_type == DT_REG)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return fstatat(parent, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

sigset_t HeldBackSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : kHeldBack)
        sigaddset(&signals, signal);
    return signals;
}

} // namespace

NativeFolder::NativeFolder(const std::string &path)
    : m_descriptor(open(ToFilesystemPath(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_descriptor == -1)
        m_error = LastError();
}

NativeFolder::~NativeFolder()
{
    const Descriptor owner(m_descriptor);
}

std::error_code NativeFolder::List(const std::string &path, std::vector<FolderEntry> &entries) const
{
    entries.clear();
    if (!path.empty() && !IsBelow(path))
        return ErrorOf(std::errc::invalid_argument);
    Descriptor descriptor(openat(m_descriptor, path.empty() ? "." : path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const FolderOwner folder(descriptor.IsOpen() ? fdopendir(descriptor.Get()) : nullptr);
    if (!folder)
        return LastError();
    descriptor.Release();
    errno = 0;
    while (const dirent *const entry = readdir(folder.get()))
    {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            entries.push_back({std::string(name), IsFolder(dirfd(folder.get()), *entry)});
        errno = 0;
    }
    if (errno != 0)
        return LastError();
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry &left, const FolderEntry &right) { return left.name < right.name; });
    return {};
}

FileText NativeFolder::Read(const std::string &path) const
{
    FileText text;
    struct stat status = {};
    if (!IsBelow(path))
    {
        text.error = ErrorOf(std::errc::invalid_argument);
        return text;
    }
    const Descriptor file(openat(m_descriptor, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file.IsOpen())
        text.error = LastError();
    const bool isFound = file.IsOpen() ? fstat(file.Get(), &status) == 0
                                       : fstatat(m_descriptor, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    text.isWritable = isFound && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0;
    text.isForEverybody = isFound && (status.st_mode & S_IROTH) != 0;
    if (!text.error && !S_ISREG(status.st_mode))
        text.error = ErrorOf(std::errc::invalid_argument);
    if (text.error)
        return text;
    char buffer[kMostBytes];
    const ssize_t count = read(file.Get(), buffer, sizeof buffer);
    if (count < 0)
        text.error = LastError();
    else if (static_cast<std::size_t>(count) == sizeof buffer)
        text.error = ErrorOf(std::errc::file_too_large);
    else
        text.bytes.assign(buffer, static_cast<std::size_t>(count));
    return text;
}

std::error_code NativeFolder::Write(const std::string &path, std::string_view bytes) const
{
    if (bytes.empty() || !IsBelow(path))
        return ErrorOf(std::errc::invalid_argument);
    const Descriptor file(openat(m_descriptor, path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status = {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0)
        return LastError();
    if (!S_ISREG(status.st_mode))
        return ErrorOf(std::errc::invalid_argument);
    const ssize_t count = write(file.Get(), bytes.data(), bytes.size());
    if (count < 0)
        return LastError();
    return static_cast<std::size_t>(count) == bytes.size() ? std::error_code() : ErrorOf(std::errc::io_error);
}

InterruptionHeldBack::InterruptionHeldBack()
{
    const sigset_t signals = HeldBackSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

InterruptionHeldBack::~InterruptionHeldBack()
{
    const sigset_t signals = HeldBackSignals();
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

bool InterruptionHeldBack::IsWaiting()
{
    sigset_t waiting;
    return sigpending(&waiting) == 0 && std::any_of(std::begin(kHeldBack), std::end(kHeldBack),
                                                    [&](int signal) { return sigismember(&waiting, signal) == 1; });
}

} // namespace Platform
