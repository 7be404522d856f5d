#include "ReplacedFile.h"

#include "ToolError.h"

ReplacedFile::ReplacedFile(const std::string &path) : m_path(path), m_unfinishedPath(path + ".new")
{
    if (!m_writer.Open(m_unfinishedPath))
        throw ToolError(ExitCode::CannotWrite, "cannot create \"" + m_unfinishedPath + "\"");
}

ReplacedFile::~ReplacedFile()
{
    if (m_committed)
        return;
    m_writer.Close();
    Platform::RemoveFile(m_unfinishedPath);
}

bool ReplacedFile::Write(std::string_view text)
{
    m_complete = m_complete && m_writer.Write(text);
    return m_complete;
}

void ReplacedFile::Commit()
{
    const bool closed = m_writer.Close();
    m_committed = closed && m_complete && Platform::RenameOver(m_unfinishedPath, m_path);
    if (!m_committed)
        throw ToolError(ExitCode::CannotWrite, "cannot write \"" + m_path + "\"");
}
