#include "ModuleLogXMLWriter.h"

#include <utility>

namespace
{

constexpr std::size_t kMostColumns = 8;

std::vector<std::string> AttributeNames(std::string_view header)
{
    std::vector<std::string> names = ModuleDataWriter::SplitString(header, ",");
    if (names.size() > kMostColumns)
        return {"Value"};
    for (std::string &name : names)
        name = ModuleDataWriter::ReplaceAll(name, " ", "");
    return names;
}

} // namespace

ModuleLogXMLWriter::ModuleLogXMLWriter() : ModuleXMLWriter("ModuleLogXMLWriter")
{
    const LifeTrace traced = TraceConstruction();
}

ModuleLogXMLWriter::~ModuleLogXMLWriter()
{
    const LifeTrace traced = TraceDestruction();
}

Status ModuleLogXMLWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string /*description*/)
{
    if (moduleName.empty())
        return trace.Fail(StatusCode::NotFound, "moduleName is empty\n");
    if (!StartDocument("Module", std::move(moduleName)))
        return trace.Fail(StatusCode::Failed, "CCXmlCreateDoc failed\n");
    m_pSubModNode = m_pRootNode;
    return trace.Done(StatusCode::Success);
}

Status ModuleLogXMLWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    if (subModName.empty())
        return trace.Fail(StatusCode::NotFound, "subModName is empty\n");
    if (!m_pDoc || !m_pRootNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    m_pSubModNode = AddNamedElement(m_pRootNode, "SubModule", SanitizeText(std::move(subModName)));
    return trace.Done(StatusCode::Success);
}

Status ModuleLogXMLWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    if (tabName.empty() || header.empty())
        return trace.Fail(StatusCode::NotFound, "NULL argument(s)\n");
    if (!m_pDoc || !m_pSubModNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    m_headers = AttributeNames(header);
    m_tabName = std::move(tabName);
    return trace.Done(StatusCode::Success);
}

Status ModuleLogXMLWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    if (!m_pDoc || !m_pSubModNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    std::string name = SanitizeText(groupName.empty() ? m_tabName : std::move(groupName));
    m_pGroupNode = AddNamedElement(m_pSubModNode, "Group", std::move(name));
    return trace.Done(StatusCode::Success);
}

Status ModuleLogXMLWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    if (rowContent.empty())
        return trace.Fail(StatusCode::NotFound, "rowContent is empty\n");
    if (!m_pDoc || !m_pGroupNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
    if (!AddItem(SanitizeText(std::move(rowContent))))
        return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
    return trace.Done(StatusCode::Success);
}

xmlNodePtr ModuleLogXMLWriter::AddItem(std::string row)
{
    std::vector<std::string_view> cells = SplitRow(row);
    if (cells.size() != m_headers.size())
        return CCXmlAddTextNode(m_pGroupNode, "Item", std::move(row));
    // The only cell of a row keeps its closing quotation mark here, and loses the opening one.
    if (cells.size() == 1)
        cells.front() = WithoutFirst(cells.front());
    NewElement item(AddElement(m_pGroupNode, "Item"));
    for (std::size_t column = 0; column < cells.size(); ++column)
        CCXmlSetTextAttribute(item.get(), m_headers[column].c_str(), std::string(cells[column]));
    return item.release();
}

void ModuleLogXMLWriter::ForgetNodes()
{
    m_pSubModNode = nullptr;
    m_pGroupNode = nullptr;
}
