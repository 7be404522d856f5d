#pragma once

#include "Platform.h"

#include <string>
#include <string_view>

namespace Platform
{

/// A file that comes to stand under its name in one step, when it is whole: it is written beside, with an ending of its
/// own behind the name. Until Commit, and after any failure, the file that was there stays as it was.
class ReplacedFile
{
public:
    /// `path` is a path text of the platform.
    explicit ReplacedFile(std::string path, std::string_view ending = ".new");
    /// Removes what was not put in place.
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile &) = delete;
    ReplacedFile &operator=(const ReplacedFile &) = delete;

    /// Creates the file beside; false when that fails, for instance because the folder takes no new file.
    bool Open();

    /// Where to write; null before Open and after Finish. Write failures need not be looked at: Finish tells of them.
    std::FILE *Stream() const { return m_stream.get(); }

    /// Ends the writing; false when not everything could be written.
    bool Finish();

    /// Finish where that is still to be done, then the step itself (RenameOver). Returns false, with what was written
    /// removed, when either fails.
    bool Commit();

private:
    std::string m_path;
    std::string m_besidePath;
    StreamOwner m_stream;
    bool m_isWhole = false;
    bool m_isPresent = false;
};

} // namespace Platform
