#include "ValueFiles.h"

#include "FilesystemPath.h"
#include "KnobDump.h"
#include "Machine.h"
#include "ToolProgram.h"

#include <array>
#include <exception>
#include <filesystem>
#include <string_view>
#include <utility>

namespace
{

namespace fs = std::filesystem;

/// As the dump's element biosknobs has it, not far from its start; quotation marks stand in no other place.
constexpr std::string_view kMark = "valuesNeedRights=\"TRUE\"";
constexpr std::size_t kHeadSize = 4096;
/// Where the module puts knob files, in the external tool's directory.
constexpr const char *kKnobFileFolder = "out";

/// The external tool's directory; empty where it is not known.
std::string ToolDirectory(const Arguments &arguments)
{
    UseProgramFiles(arguments);
    std::string directory;
    const Status status = GetEnvironmentalVaribaleBiosLib("ProgramFiles", directory);
    return status == StatusCode::Success ? directory : "";
}

void RestrictFilesOf(const std::string &folder)
{
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(Platform::ToFilesystemPath(folder), error))
    {
        if (!entry.is_regular_file(error) || entry.is_symlink(error))
            continue;
        const Platform::StreamOwner stream = Platform::OpenStream(Platform::FromFilesystemPath(entry.path()), "rb");
        if (stream)
            Platform::RestrictToOwner(stream.get());
    }
}

} // namespace

bool ValuesNeedRights(const Arguments &arguments)
{
    const std::string directory = ToolDirectory(arguments);
    const Platform::StreamOwner stream =
        directory.empty() ? nullptr : Platform::OpenStream(toolDumpFile(directory), "rb");
    std::array<char, kHeadSize> head = {};
    const std::size_t size = stream ? std::fread(head.data(), 1, head.size(), stream.get()) : 0;
    return std::string_view(head.data(), size).find(kMark) != std::string_view::npos;
}

FilesWithValues::FilesWithValues(const Arguments &arguments, std::string reportFolder)
    : m_arguments(arguments), m_reportFolder(std::move(reportFolder))
{
    if (!ValuesNeedRights(m_arguments))
        return;
    m_forOwnerOnly.emplace();
    Restrict();
}

FilesWithValues::~FilesWithValues()
{
    Restrict();
}

void FilesWithValues::Restrict() const noexcept
{
    try
    {
        if (!ValuesNeedRights(m_arguments))
            return;
        if (!m_reportFolder.empty())
            RestrictFilesOf(m_reportFolder);
        RestrictFilesOf(ToolDirectory(m_arguments) + kKnobFileFolder);
    }
    catch (const std::exception &)
    {
        // For want of memory; what is made from now on is the owner's alone where the dump said so before.
    }
}
