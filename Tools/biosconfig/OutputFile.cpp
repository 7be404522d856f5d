#include "OutputFile.h"

#include "ExitCode.h"

namespace
{

void WriteAll(std::FILE *stream, std::string_view data, const std::string &name)
{
    if (std::fwrite(data.data(), 1, data.size(), stream) != data.size() || std::fflush(stream) != 0)
        throw Failure(ExitCode::Unexpected, "cannot write everything to " + name);
}

} // namespace

OutputFile::OutputFile(const std::string &path)
{
    if (path == kStandardOutput)
        return;
    m_path = Platform::LinkTarget(path);
    bool isOpen = false;
    if (Platform::CanBePlainFile(m_path))
        isOpen = m_replaced.emplace(m_path).Open();
    else
        isOpen = (m_direct = Platform::OpenStream(m_path, "wb")) != nullptr;
    if (!isOpen)
        throw Failure(ExitCode::Unexpected, "cannot write the output file " + path);
    if (m_replaced && !m_replaced->BesidePath().empty())
        m_removed.emplace(m_replaced->BesidePath(), m_replaced->Stream());
}

void OutputFile::RestrictToOwner()
{
    if (m_replaced && !Platform::RestrictToOwner(m_replaced->Stream()))
        throw Failure(ExitCode::NotPermitted, "the values need rights, and others cannot be kept from " + m_path);
}

void OutputFile::Write(std::string_view data)
{
    if (IsStandardOutput())
    {
        Platform::StandardOutputAsBytes();
        WriteAll(stdout, data, "standard output");
        return;
    }
    WriteAll(Stream(), data, m_path);
    Commit();
}

void OutputFile::Commit()
{
    if (m_replaced && !m_replaced->Commit())
        throw Failure(ExitCode::Unexpected, "cannot replace the output file " + m_path);
    m_removed.reset();
}
