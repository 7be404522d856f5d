#include "ModuleUIXMLWriter.h"

#include <utility>

ModuleUIXMLWriter::ModuleUIXMLWriter() : m_debugHandle("ModuleUIXMLWriter")
{
    const WriterOperation traced(m_debugHandle, "ModuleUIXMLWriter::ModuleUIXMLWriter");
}

ModuleUIXMLWriter::~ModuleUIXMLWriter()
{
    const WriterOperation traced(m_debugHandle, "ModuleUIXMLWriter::~ModuleUIXMLWriter");
}

Status ModuleUIXMLWriter::Initialize(std::string moduleName, std::string description)
{
    WriterOperation operation(m_debugHandle, "ModuleUIXMLWriter::Initialize");
    const auto start = [&]
    {
        if (!StartDocument(operation, "TreeItem", std::move(moduleName)))
            return;
        if (!description.empty())
            CCXmlSetTextAttribute(m_pRootNode, "Description", std::move(description));
        m_subModCount = 0;
        m_tabCount = 0;
        m_pItemNode = m_pRootNode;
    };
    return operation.Argument(!moduleName.empty(), "moduleName is empty\n").Run(start);
}

Status ModuleUIXMLWriter::AddSubMod(std::string subModName)
{
    const auto add = [&]
    {
        if (m_subModCount == 0)
            m_pTreeListNode = AddElement(m_pRootNode, "TreeList");
        m_pItemNode = AddNamedElement(m_pTreeListNode, "TreeItem", SanitizeText(std::move(subModName)));
        ++m_subModCount;
        m_tabCount = 0;
    };
    return WriterOperation(m_debugHandle, "ModuleUIXMLWriter::AddSubMod")
        .Argument(!subModName.empty(), "subModName is empty\n")
        .Needs(m_pDoc && m_pRootNode, "NULL Pointer:m_pDoc\n")
        .Run(add);
}

Status ModuleUIXMLWriter::AddTab(std::string tabName, std::string header)
{
    const auto add = [&]
    {
        if (m_tabCount == 0)
            m_pTabControlNode = AddElement(m_pItemNode, "TabControl");
        m_pTabNode = AddNamedElement(m_pTabControlNode, "Tab", std::move(tabName));
        m_pGridNode = AddElement(m_pTabNode, "Grid");
        CCXmlAddTextNode(m_pGridNode, "Header", std::move(header));
        ++m_tabCount;
    };
    return WriterOperation(m_debugHandle, "ModuleUIXMLWriter::AddTab")
        .Argument(!tabName.empty() && !header.empty(), "empty parameter(s)\n")
        .Needs(m_pDoc && m_pItemNode, "NULL Pointer:m_pDoc\n")
        .Run(add);
}

Status ModuleUIXMLWriter::AddGroup(std::string groupName)
{
    return WriterOperation(m_debugHandle, "ModuleUIXMLWriter::AddGroup")
        .Needs(m_pDoc && m_pGridNode, "NULL Pointer:m_pDoc\n")
        .Run([&] { m_pGroupNode = AddNamedElement(m_pGridNode, "Group", SanitizeText(std::move(groupName))); });
}

Status ModuleUIXMLWriter::AddRow(std::string rowContent)
{
    WriterOperation operation(m_debugHandle, "ModuleUIXMLWriter::AddRow");
    const auto add = [&]
    {
        const xmlNodePtr row = CCXmlAddTextNode(m_pGroupNode, "Row", SanitizeText(std::move(rowContent)));
        operation.Needs(row, "NULL Pointer(s)\n");
    };
    return operation.Argument(!rowContent.empty(), "rowContent is empty\n")
        .Needs(m_pDoc && m_pGroupNode, "NULL Pointer(s)\n")
        .Run(add);
}

Status ModuleUIXMLWriter::CopyDataToBuffer(std::string &buffer)
{
    return CopyDocument(WriterOperation(m_debugHandle, "ModuleUIXMLWriter::CopyDataToBuffer"), buffer);
}

Status ModuleUIXMLWriter::UnInitialize()
{
    return GiveUpDocument(WriterOperation(m_debugHandle, "ModuleUIXMLWriter::UnInitialize"));
}

void ModuleUIXMLWriter::ForgetNodes()
{
    for (xmlNodePtr *node :
         {&m_pTreeListNode, &m_pItemNode, &m_pTabControlNode, &m_pTabNode, &m_pGridNode, &m_pGroupNode})
        *node = nullptr;
}
