#include "ModuleLogHTMLXMLWriter.h"

#include "ModuleLogHTMLWriter.h"
#include "ModuleLogXMLWriter.h"

#include <new>
#include <utility>

namespace
{

/// Of what the two say only this counts. Failed is what one says that could not even start its document.
void RequireMemory(Status status)
{
    if (status == StatusCode::NoMemory || status == StatusCode::Failed)
        throw std::bad_alloc();
}

} // namespace

ModuleLogHTMLXMLWriter::ModuleLogHTMLXMLWriter() : TracedWriter("ModuleLogHTMLXMLWriter")
{
    const LifeTrace traced = TraceConstruction();
    m_pHTMLWriter = std::make_unique<ModuleLogHTMLWriter>();
    m_pXMLWriter = std::make_unique<ModuleLogXMLWriter>();
}

ModuleLogHTMLXMLWriter::~ModuleLogHTMLXMLWriter()
{
    const LifeTrace traced = TraceDestruction();
    m_pHTMLWriter.reset();
    m_pXMLWriter.reset();
}

template <typename... Texts>
Status ModuleLogHTMLXMLWriter::Forward(FunctionTrace &trace, Status (ModuleDataWriter::*operation)(Texts...),
                                       Texts &...texts)
{
    RequireMemory((*m_pHTMLWriter.*operation)(texts...));
    RequireMemory((*m_pXMLWriter.*operation)(std::move(texts)...));
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLXMLWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string /*description*/)
{
    if (moduleName.empty())
        return trace.Fail(StatusCode::NotFound, "moduleName is empty\n");
    std::string noDescription;
    return Forward(trace, &ModuleDataWriter::Initialize, moduleName, noDescription);
}

Status ModuleLogHTMLXMLWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    if (subModName.empty())
        return trace.Fail(StatusCode::NotFound, "subModName is empty\n");
    return Forward(trace, &ModuleDataWriter::AddSubMod, subModName);
}

Status ModuleLogHTMLXMLWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    if (tabName.empty() || header.empty())
        return trace.Fail(StatusCode::NotFound, "NULL argument(s)\n");
    return Forward(trace, &ModuleDataWriter::AddTab, tabName, header);
}

Status ModuleLogHTMLXMLWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    if (groupName.empty())
        return trace.Fail(StatusCode::NotFound, "NULL argument(s)\n");
    return Forward(trace, &ModuleDataWriter::AddGroup, groupName);
}

Status ModuleLogHTMLXMLWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    if (rowContent.empty())
        return trace.Fail(StatusCode::NotFound, "rowContent is empty\n");
    return Forward(trace, &ModuleDataWriter::AddRow, rowContent);
}

Status ModuleLogHTMLXMLWriter::DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer)
{
    struct Section
    {
        ModuleDataWriter &writer;
        std::string_view begin;
        std::string_view end;
    };
    const Section sections[] = {{*m_pHTMLWriter, "HTML_LOG_DATA_BEGIN", "HTML_LOG_DATA_END"},
                                {*m_pXMLWriter, "XML_LOG_DATA_BEGIN", "XML_LOG_DATA_END"}};
    std::string document;
    std::string combined;
    for (const Section &section : sections)
    {
        RequireMemory(section.writer.CopyDataToBuffer(document));
        const std::string &text = document.empty() ? buffer : document;
        combined.append(section.begin).append(text).append(section.end);
    }
    buffer = std::move(combined);
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLXMLWriter::DoUnInitialize(FunctionTrace &trace)
{
    return Forward(trace, &ModuleDataWriter::UnInitialize);
}
