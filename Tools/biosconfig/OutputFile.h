#pragma once

#include "Program.h"
#include "ReplacedFile.h"

#include <optional>
#include <string>
#include <string_view>

/// The path that stands for standard output.
inline constexpr std::string_view kStandardOutput = "-";

/// The file that is to hold the data, or standard output for "-". The data goes into a file beside it, which takes
/// its place in one step when everything is written; until then, and after any failure, an existing file stays as it
/// was. What is no plain file (a device, a pipe) is written directly.
class OutputFile
{
public:
    /// Throws Failure when `path` cannot be written.
    explicit OutputFile(const std::string &path);

    bool IsStandardOutput() const { return m_path.empty(); }

    /// From now on what is written to the file, if it is a plain one, is for its owner alone. Throws Failure where the
    /// system does not let that be.
    void RestrictToOwner();

    /// Writes `data` byte for byte and puts it in place. Throws Failure when that fails. To be called once.
    void Write(std::string_view data);

    /// For somebody else to write to; null for standard output.
    std::FILE *Stream() const { return m_replaced ? m_replaced->Stream() : m_direct.get(); }

    /// Puts in place what was written to Stream. Throws Failure when that fails.
    void Commit();

private:
    std::string m_path;
    /// One of the two, but for standard output.
    std::optional<Platform::ReplacedFile> m_replaced;
    Platform::StreamOwner m_direct;
    std::optional<Platform::RemovedWhenInterrupted> m_removed;
};
