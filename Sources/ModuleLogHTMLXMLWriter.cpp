#include "ModuleLogHTMLXMLWriter.h"

#include "ModuleLogHTMLWriter.h"
#include "ModuleLogXMLWriter.h"

#include <utility>

ModuleLogHTMLXMLWriter::ModuleLogHTMLXMLWriter() : m_debugHandle("ModuleLogHTMLXMLWriter")
{
    const WriterOperation traced(m_debugHandle, "ModuleLogHTMLXMLWriter::ModuleLogHTMLXMLWriter");
    m_pHTMLWriter = std::make_unique<ModuleLogHTMLWriter>();
    m_pXMLWriter = std::make_unique<ModuleLogXMLWriter>();
}

ModuleLogHTMLXMLWriter::~ModuleLogHTMLXMLWriter()
{
    const WriterOperation traced(m_debugHandle, "ModuleLogHTMLXMLWriter::~ModuleLogHTMLXMLWriter");
    m_pHTMLWriter.reset();
    m_pXMLWriter.reset();
}

template <typename... Texts>
void ModuleLogHTMLXMLWriter::Forward(Status (ModuleDataWriter::*operation)(Texts...), Texts &...texts)
{
    (*m_pHTMLWriter.*operation)(texts...);
    (*m_pXMLWriter.*operation)(std::move(texts)...);
}

Status ModuleLogHTMLXMLWriter::Initialize(std::string moduleName, std::string /*description*/)
{
    std::string noDescription;
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::Initialize")
        .Argument(!moduleName.empty(), "moduleName is empty\n")
        .Run([&] { Forward(&ModuleDataWriter::Initialize, moduleName, noDescription); });
}

Status ModuleLogHTMLXMLWriter::AddSubMod(std::string subModName)
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::AddSubMod")
        .Argument(!subModName.empty(), "subModName is empty\n")
        .Run([&] { Forward(&ModuleDataWriter::AddSubMod, subModName); });
}

Status ModuleLogHTMLXMLWriter::AddTab(std::string tabName, std::string header)
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::AddTab")
        .Argument(!tabName.empty() && !header.empty(), "NULL argument(s)\n")
        .Run([&] { Forward(&ModuleDataWriter::AddTab, tabName, header); });
}

Status ModuleLogHTMLXMLWriter::AddGroup(std::string groupName)
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::AddGroup")
        .Argument(!groupName.empty(), "NULL argument(s)\n")
        .Run([&] { Forward(&ModuleDataWriter::AddGroup, groupName); });
}

Status ModuleLogHTMLXMLWriter::AddRow(std::string rowContent)
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::AddRow")
        .Argument(!rowContent.empty(), "rowContent is empty\n")
        .Run([&] { Forward(&ModuleDataWriter::AddRow, rowContent); });
}

Status ModuleLogHTMLXMLWriter::CopyDataToBuffer(std::string &buffer)
{
    struct Section
    {
        ModuleDataWriter &writer;
        std::string_view begin;
        std::string_view end;
    };
    const Section sections[] = {{*m_pHTMLWriter, "HTML_LOG_DATA_BEGIN", "HTML_LOG_DATA_END"},
                                {*m_pXMLWriter, "XML_LOG_DATA_BEGIN", "XML_LOG_DATA_END"}};
    const auto copy = [&]
    {
        std::string document;
        std::string combined;
        for (const Section &section : sections)
        {
            section.writer.CopyDataToBuffer(document);
            const std::string &text = document.empty() ? buffer : document;
            combined.append(section.begin).append(text).append(section.end);
        }
        buffer = std::move(combined);
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::CopyDataToBuffer").Run(copy);
}

Status ModuleLogHTMLXMLWriter::UnInitialize()
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLXMLWriter::UnInitialize")
        .Run([this] { Forward(&ModuleDataWriter::UnInitialize); });
}
