#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// Files that are not stored anywhere, such as those that a kernel makes up: what counts is how often and with what
/// they are read and written. There on POSIX alone.
namespace Platform
{

struct FolderEntry
{
    std::string name;
    /// A folder, or a link to one; anything else is a file.
    bool isFolder = false;
};

/// What one read of a file gave.
struct FileText
{
    /// No error where the file could be read.
    std::error_code error;
    std::string bytes;
    /// Whether somebody may write it, going by its mode alone. Known where the file could be found.
    bool isWritable = false;
    /// Whether everybody may read it, going by its mode alone. Known as the above.
    bool isForEverybody = false;
};

/// A folder. Paths are below it, their parts joined by "/", names of the system's own: a `\` is a part of a name. No
/// part may be empty, "." or "..". A file is never a link, nor anything but a regular file: both are refused with
/// std::errc::invalid_argument or std::errc::too_many_symbolic_link_levels. Throws std::bad_alloc alone.
class NativeFolder
{
public:
    /// `path` is a path text of the platform. POSIX: open.
    explicit NativeFolder(const std::string &path);
    ~NativeFolder();
    NativeFolder(const NativeFolder &) = delete;
    NativeFolder &operator=(const NativeFolder &) = delete;

    /// Why the folder cannot be opened; no error where it is.
    std::error_code Error() const { return m_error; }

    /// Replaces `entries` by what the folder `path`, or with an empty one this folder, holds, in byte-wise order of the
    /// names. POSIX: openat, fdopendir, readdir, fstatat.
    std::error_code List(const std::string &path, std::vector<FolderEntry> &entries) const;

    /// Reads a file with one call for at most `kMostBytes`; more are std::errc::file_too_large. POSIX: openat, fstat,
    /// read.
    FileText Read(const std::string &path) const;

    /// Writes `bytes`, not none, to a file that is there with one call; a stored file is emptied before. A call that
    /// takes only a part of them is std::errc::io_error. POSIX: openat, write.
    std::error_code Write(const std::string &path, std::string_view bytes) const;

    static constexpr std::size_t kMostBytes = 65536;

private:
    int m_descriptor;
    std::error_code m_error;
};

/// While it lives, Ctrl-C, SIGHUP and SIGTERM wait; what has come by then comes behind it. There is one at a time, in
/// the only thread of a process. POSIX: sigprocmask.
class InterruptionHeldBack
{
public:
    InterruptionHeldBack();
    ~InterruptionHeldBack();
    InterruptionHeldBack(const InterruptionHeldBack &) = delete;
    InterruptionHeldBack &operator=(const InterruptionHeldBack &) = delete;

    /// Whether one waits. POSIX: sigpending.
    static bool IsWaiting();
};

} // namespace Platform
