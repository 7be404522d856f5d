#include "ReplacedFile.h"

#include <new>
#include <utility>

namespace Platform
{

ReplacedFile::ReplacedFile(std::string path, std::string_view ending)
    : m_path(std::move(path)), m_besidePath(m_path + std::string(ending))
{
}

ReplacedFile::~ReplacedFile()
{
    m_stream.reset();
    try
    {
        if (m_isPresent)
            RemoveFile(m_besidePath);
    }
    catch (const std::bad_alloc &)
    {
        // It stays beside, where the next one of that name replaces it.
    }
}

bool ReplacedFile::Open()
{
    m_stream = OpenStream(m_besidePath, "wb");
    m_isPresent = m_stream != nullptr;
    return m_isPresent;
}

bool ReplacedFile::Finish()
{
    if (!m_stream)
        return m_isWhole;
    const bool failed = std::ferror(m_stream.get()) != 0;
    m_isWhole = std::fclose(m_stream.release()) == 0 && !failed;
    return m_isWhole;
}

bool ReplacedFile::Commit()
{
    const bool replaced = Finish() && RenameOver(m_besidePath, m_path);
    if (!replaced && m_isPresent)
        RemoveFile(m_besidePath);
    m_isPresent = false;
    return replaced;
}

} // namespace Platform
