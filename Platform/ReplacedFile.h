#pragma once

#include "Platform.h"

#include <string>

namespace Platform
{

/// A file that comes to stand under its name in one step, when it is whole and safe on the disk: it is written beside,
/// under a name of this process's own, and renamed. Until Commit, and after any failure, the file that was there stays
/// as it was.
///
/// What the file is does not change: a link stays, and the file that it leads to is replaced; mode, owner and group
/// (Windows: the access list) are kept; a file that may not be written is refused. Where the folder takes no new file,
/// or the system refuses the rename or the owner, the file is written in place instead: half of it is left only when
/// the system or the process goes down meanwhile or the disk is full.
class ReplacedFile
{
public:
    /// `path` is a path text of the platform. With OwnerOnly nobody but the owner of the file may have the new one, nor
    /// what is written beside.
    explicit ReplacedFile(const std::string &path, FileAccess access = FileAccess::Usual);
    /// Removes what was not put in place.
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile &) = delete;
    ReplacedFile &operator=(const ReplacedFile &) = delete;

    /// Gets ready for writing; false when the file cannot be written.
    bool Open();

    /// Where to write; null before Open and after Commit. Write failures need not be looked at: Commit tells of them.
    std::FILE *Stream() const { return m_stream.get(); }

    /// The path of what is written beside; empty where nothing is.
    const std::string &BesidePath() const { return m_besidePath; }

    /// Has everything written to the disk and takes the step itself. Returns false when that fails. What was written is
    /// then the destructor's to remove; but where writing in place has failed, it stays beside.
    bool Commit();

private:
    bool OpenBeside(bool &isRefused);
    bool Finish();

    std::string m_path;
    FileAccess m_access;
    /// Empty while nothing stands beside.
    std::string m_besidePath;
    StreamOwner m_stream;
};

/// The path of the file that a chain of links at `path` leads to, there or not; `path` itself where it is no link.
std::string LinkTarget(const std::string &path);

} // namespace Platform
