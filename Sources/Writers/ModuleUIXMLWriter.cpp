#include "ModuleUIXMLWriter.h"

#include <utility>

ModuleUIXMLWriter::ModuleUIXMLWriter() : ModuleXMLWriter("ModuleUIXMLWriter")
{
    const LifeTrace traced = TraceConstruction();
}

ModuleUIXMLWriter::~ModuleUIXMLWriter()
{
    const LifeTrace traced = TraceDestruction();
}

Status ModuleUIXMLWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description)
{
    if (moduleName.empty())
        return trace.Fail(StatusCode::NotFound, "moduleName is empty\n");
    if (!StartDocument("TreeItem", std::move(moduleName)))
        return trace.Fail(StatusCode::Failed, "CCXmlCreateDoc failed\n");
    if (!description.empty())
        CCXmlSetTextAttribute(m_pRootNode, "Description", std::move(description));
    m_subModCount = 0;
    m_tabCount = 0;
    m_pItemNode = m_pRootNode;
    return trace.Done(StatusCode::Success);
}

Status ModuleUIXMLWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    if (subModName.empty())
        return trace.Fail(StatusCode::NotFound, "subModName is empty\n");
    if (!m_pDoc || !m_pRootNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    if (m_subModCount == 0)
        m_pTreeListNode = AddElement(m_pRootNode, "TreeList");
    m_pItemNode = AddNamedElement(m_pTreeListNode, "TreeItem", SanitizeText(std::move(subModName)));
    ++m_subModCount;
    m_tabCount = 0;
    return trace.Done(StatusCode::Success);
}

Status ModuleUIXMLWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    if (tabName.empty() || header.empty())
        return trace.Fail(StatusCode::NotFound, "empty parameter(s)\n");
    if (!m_pDoc || !m_pItemNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    if (m_tabCount == 0)
        m_pTabControlNode = AddElement(m_pItemNode, "TabControl");
    m_pTabNode = AddNamedElement(m_pTabControlNode, "Tab", std::move(tabName));
    m_pGridNode = AddElement(m_pTabNode, "Grid");
    CCXmlAddTextNode(m_pGridNode, "Header", std::move(header));
    ++m_tabCount;
    return trace.Done(StatusCode::Success);
}

Status ModuleUIXMLWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    if (!m_pDoc || !m_pGridNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    m_pGroupNode = AddNamedElement(m_pGridNode, "Group", SanitizeText(std::move(groupName)));
    return trace.Done(StatusCode::Success);
}

Status ModuleUIXMLWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    if (rowContent.empty())
        return trace.Fail(StatusCode::NotFound, "rowContent is empty\n");
    if (!m_pDoc || !m_pGroupNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
    if (!CCXmlAddTextNode(m_pGroupNode, "Row", SanitizeText(std::move(rowContent))))
        return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
    return trace.Done(StatusCode::Success);
}

void ModuleUIXMLWriter::ForgetNodes()
{
    for (xmlNodePtr *node :
         {&m_pTreeListNode, &m_pItemNode, &m_pTabControlNode, &m_pTabNode, &m_pGridNode, &m_pGroupNode})
        *node = nullptr;
}
