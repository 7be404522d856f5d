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

ModuleLogXMLWriter::ModuleLogXMLWriter() : m_debugHandle("ModuleLogXMLWriter")
{
    const WriterOperation traced(m_debugHandle, "ModuleLogXMLWriter::ModuleLogXMLWriter");
}

ModuleLogXMLWriter::~ModuleLogXMLWriter()
{
    const WriterOperation traced(m_debugHandle, "ModuleLogXMLWriter::~ModuleLogXMLWriter");
}

Status ModuleLogXMLWriter::Initialize(std::string moduleName, std::string /*description*/)
{
    WriterOperation operation(m_debugHandle, "ModuleLogXMLWriter::Initialize");
    const auto start = [&]
    {
        if (!StartDocument(operation, "Module", std::move(moduleName)))
            return;
        m_pSubModNode = m_pRootNode;
    };
    return operation.Argument(!moduleName.empty(), "moduleName is empty\n").Run(start);
}

Status ModuleLogXMLWriter::AddSubMod(std::string subModName)
{
    return WriterOperation(m_debugHandle, "ModuleLogXMLWriter::AddSubMod")
        .Argument(!subModName.empty(), "subModName is empty\n")
        .Needs(m_pDoc && m_pRootNode, "NULL Pointer:m_pDoc\n")
        .Run([&] { m_pSubModNode = AddNamedElement(m_pRootNode, "SubModule", SanitizeText(std::move(subModName))); });
}

Status ModuleLogXMLWriter::AddTab(std::string tabName, std::string header)
{
    const auto add = [&]
    {
        m_headers = AttributeNames(header);
        m_tabName = std::move(tabName);
    };
    return WriterOperation(m_debugHandle, "ModuleLogXMLWriter::AddTab")
        .Argument(!tabName.empty() && !header.empty(), "NULL argument(s)\n")
        .Needs(m_pDoc && m_pSubModNode, "NULL Pointer:m_pDoc\n")
        .Run(add);
}

Status ModuleLogXMLWriter::AddGroup(std::string groupName)
{
    const auto add = [&]
    {
        std::string name = SanitizeText(groupName.empty() ? m_tabName : std::move(groupName));
        m_pGroupNode = AddNamedElement(m_pSubModNode, "Group", std::move(name));
    };
    return WriterOperation(m_debugHandle, "ModuleLogXMLWriter::AddGroup")
        .Needs(m_pDoc && m_pSubModNode, "NULL Pointer:m_pDoc\n")
        .Run(add);
}

Status ModuleLogXMLWriter::AddRow(std::string rowContent)
{
    WriterOperation operation(m_debugHandle, "ModuleLogXMLWriter::AddRow");
    return operation.Argument(!rowContent.empty(), "rowContent is empty\n")
        .Needs(m_pDoc && m_pGroupNode, "NULL Pointer(s)\n")
        .Run([&] { operation.Needs(AddItem(SanitizeText(std::move(rowContent))), "NULL Pointer(s)\n"); });
}

xmlNodePtr ModuleLogXMLWriter::AddItem(std::string row)
{
    std::vector<std::string_view> cells = SplitRow(row);
    if (cells.size() != m_headers.size())
        return CCXmlAddTextNode(m_pGroupNode, "Item", std::move(row));
    // The only cell of a row keeps its closing quotation mark here, and loses the opening one.
    if (cells.size() == 1)
        cells.front() = WithoutFirst(cells.front());
    const xmlNodePtr item = AddElement(m_pGroupNode, "Item");
    for (std::size_t column = 0; column < cells.size(); ++column)
        CCXmlSetTextAttribute(item, m_headers[column].c_str(), std::string(cells[column]));
    return item;
}

Status ModuleLogXMLWriter::CopyDataToBuffer(std::string &buffer)
{
    return CopyDocument(WriterOperation(m_debugHandle, "ModuleLogXMLWriter::CopyDataToBuffer"), buffer);
}

Status ModuleLogXMLWriter::UnInitialize()
{
    return GiveUpDocument(WriterOperation(m_debugHandle, "ModuleLogXMLWriter::UnInitialize"));
}

void ModuleLogXMLWriter::ForgetNodes()
{
    m_pSubModNode = nullptr;
    m_pGroupNode = nullptr;
}
