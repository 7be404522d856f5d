#pragma once

#include "Platform.h"

#include <string>
#include <string_view>

/// A text file that comes to stand under its name only when it is complete: it is written beside, with ".new" after
/// its name, and takes the place of an earlier file at Commit. Without Commit the earlier file stays.
class ReplacedFile
{
public:
    /// Throws ToolError (CannotWrite) when the file cannot be created.
    explicit ReplacedFile(const std::string &path);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile &) = delete;
    ReplacedFile &operator=(const ReplacedFile &) = delete;

    /// Every line feed goes out as carriage return and line feed. Returns false when not everything could be written.
    bool Write(std::string_view text);

    /// Throws ToolError (CannotWrite) when anything of the file could not be written, or its name not be taken.
    void Commit();

private:
    std::string m_path;
    std::string m_unfinishedPath;
    Platform::TextFileWriter m_writer;
    bool m_complete = true;
    bool m_committed = false;
};
