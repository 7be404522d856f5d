#include "ReplacedFile.h"

#include "FilesystemPath.h"

#include <cerrno>
#include <filesystem>
#include <new>
#include <utility>

namespace Platform
{

namespace
{

constexpr int kMostLinks = 40;
/// One process may replace a file from several threads, and another one of the same number may have left some behind.
constexpr int kMostNames = 100;

/// Sees to it that the file open as `stream` is for whom `access` says.
bool IsFor(FileAccess access, std::FILE *stream)
{
    return access == FileAccess::Usual || RestrictToOwner(stream);
}

/// Writes the file at `from` over the bytes of the one at `to`.
bool CopyInPlace(const std::string &from, const std::string &to, FileAccess access)
{
    const StreamOwner source = OpenStream(from, "rb");
    const StreamOwner target = OpenStream(to, "wb");
    if (!source || !target || !IsFor(access, target.get()))
        return false;
    char bytes[16384];
    for (std::size_t count = 0; (count = std::fread(bytes, 1, sizeof bytes, source.get())) > 0;)
    {
        if (std::fwrite(bytes, 1, count, target.get()) != count)
            return false;
    }
    return !std::ferror(source.get()) && SyncStream(target.get());
}

} // namespace

std::string LinkTarget(const std::string &path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path target = ToFilesystemPath(path);
    for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(target, error)); ++links)
    {
        const fs::path next = fs::read_symlink(target, error);
        if (error)
            break;
        target = next.is_absolute() ? next : target.parent_path() / next;
        // A path that has no path text can be reached through the link alone.
        if (ToFilesystemPath(FromFilesystemPath(target)) != target)
            return path;
    }
    return target == ToFilesystemPath(path) ? path : FromFilesystemPath(target);
}

ReplacedFile::ReplacedFile(const std::string &path, FileAccess access) : m_path(LinkTarget(path)), m_access(access) {}

ReplacedFile::~ReplacedFile()
{
    m_stream.reset();
    try
    {
        if (!m_besidePath.empty())
            RemoveFile(m_besidePath);
    }
    catch (const std::bad_alloc &)
    {
        // It stays beside.
    }
}

bool ReplacedFile::Open()
{
    errno = 0;
    const bool exists = OpenStream(m_path, "r+b") != nullptr;
    if (!exists && errno != ENOENT)
        return false;
    bool isRefused = false;
    if (!OpenBeside(isRefused) && isRefused)
        m_stream = OpenStream(m_path, "wb");
    if (m_stream && !IsFor(m_access, m_stream.get()))
        m_stream.reset();
    return m_stream != nullptr;
}

/// `isRefused` tells whether it is for want of rights or of a name; a full disk would not take the file in its place
/// either.
bool ReplacedFile::OpenBeside(bool &isRefused)
{
    const std::string name = m_path + '.' + std::to_string(ProcessId());
    for (int number = 0; number < kMostNames; ++number)
    {
        std::string path = name + (number == 0 ? "" : '-' + std::to_string(number)) + ".new";
        errno = 0;
        m_stream = CreateStream(path, m_access);
        if (!m_stream && errno == EEXIST)
            continue;
        if (m_stream)
            m_besidePath = std::move(path);
        break;
    }
    isRefused = m_stream || errno == EACCES || errno == EPERM || errno == EROFS || errno == EEXIST;
    if (m_stream && CopyOwnership(m_path, m_stream.get(), m_access))
        return true;
    m_stream.reset();
    if (!m_besidePath.empty())
        RemoveFile(std::exchange(m_besidePath, {}));
    return false;
}

bool ReplacedFile::Finish()
{
    if (!m_stream)
        return false;
    const bool whole = !std::ferror(m_stream.get()) && SyncStream(m_stream.get());
    return std::fclose(m_stream.release()) == 0 && whole;
}

bool ReplacedFile::Commit()
{
    const bool whole = Finish();
    if (m_besidePath.empty() || !whole)
        return whole;
    const bool renamed = RenameOver(m_besidePath, m_path);
    if (!renamed && CopyInPlace(m_besidePath, m_path, m_access))
        return true;
    // It has its name now; or it is the only whole copy, and stays.
    m_besidePath.clear();
    return renamed;
}

} // namespace Platform
