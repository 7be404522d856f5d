#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// One error as the module records it; all texts are UTF-8.
struct RecordedError
{
    std::string message;
    std::string title;
    std::string time;
    std::string sourceFile;
    std::string line;
};

/// Every error that is recorded in the file at `path`, oldest first. None for a file that is not well-formed XML.
std::vector<RecordedError> ReadRecordedErrors(const std::string &path);

/// Tells the errors that are recorded in an error file while it is watched from those of earlier runs.
class ErrorFileWatch
{
public:
    /// Starts with the file at `path` as it is now; a missing one holds no error.
    explicit ErrorFileWatch(std::string path);

    const std::string &Path() const { return m_path; }

    /// What was recorded since then, oldest first.
    std::vector<RecordedError> NewErrors() const;

private:
    std::string m_path;
    std::size_t m_known;
};
