#include "OutputFile.h"

#include "ExitCode.h"
#include "FilesystemPath.h"

#include <cstdint>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

/// The file that a chain of links ends at, so that the file is replaced and not the link.
std::string LinkTarget(const std::string &path)
{
    std::error_code error;
    const fs::path target = fs::canonical(Platform::ToFilesystemPath(path), error);
    const std::string text = Platform::FromFilesystemPath(target);
    return error || Platform::ToFilesystemPath(text) != target ? path : text;
}

bool IsReplaceable(const std::string &path)
{
    std::error_code error;
    const fs::file_status status = fs::status(Platform::ToFilesystemPath(path), error);
    return fs::is_regular_file(status) || !fs::exists(status);
}

/// Two runs at one time do not get the same name.
std::string TemporaryEnding()
{
    std::uint64_t milliseconds = 0;
    Platform::MonotonicMilliseconds(milliseconds);
    return "." + std::to_string(milliseconds) + ".tmp";
}

void WriteAll(std::FILE *stream, std::string_view data, const std::string &name)
{
    if (std::fwrite(data.data(), 1, data.size(), stream) != data.size() || std::fflush(stream) != 0)
        throw Failure(ExitCode::NotWritten, "cannot write everything to " + name);
}

} // namespace

OutputFile::OutputFile(const std::string &path)
{
    if (path == "-")
        return;
    m_path = LinkTarget(path);
    bool isOpen = false;
    if (IsReplaceable(m_path))
        isOpen = m_replaced.emplace(m_path, TemporaryEnding()).Open();
    else
        isOpen = (m_direct = Platform::OpenStream(m_path, "wb")) != nullptr;
    if (!isOpen)
        throw Failure(ExitCode::NotWritten, "cannot write the output file " + path);
}

void OutputFile::Write(std::string_view data)
{
    if (IsStandardOutput())
    {
        Platform::StandardOutputAsBytes();
        WriteAll(stdout, data, "standard output");
        return;
    }
    WriteAll(m_replaced ? m_replaced->Stream() : m_direct.get(), data, m_path);
    if (m_replaced && !m_replaced->Commit())
        throw Failure(ExitCode::NotWritten, "cannot replace the output file " + m_path);
}
