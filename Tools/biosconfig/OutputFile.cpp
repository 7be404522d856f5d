#include "OutputFile.h"

#include "ExitCode.h"
#include "FilesystemPath.h"

#include <cstdint>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

bool IsReplaceable(const std::string &path)
{
    std::error_code error;
    const fs::file_status status = fs::status(Platform::ToFilesystemPath(path), error);
    return fs::is_regular_file(status) || !fs::exists(status);
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
    m_path = Platform::LinkTarget(path);
    bool isOpen = false;
    if (IsReplaceable(m_path))
        isOpen = m_replaced.emplace(m_path).Open();
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
