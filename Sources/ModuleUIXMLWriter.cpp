#include "ModuleUIXMLWriter.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"

#include <cstdlib>
#include <utility>

namespace
{

constexpr const char *kSourceFile = "ModuleUIXMLWriter";

struct FreeBlock
{
    void operator()(char *block) const { std::free(block); }
};

/// A new last child of `parent`; null without one, since an element that stands free would belong to nobody.
xmlNodePtr AddElement(xmlNodePtr parent, const char *name)
{
    return parent ? CCXmlAddNode(parent, name, nullptr) : nullptr;
}

} // namespace

ModuleUIXMLWriter::ModuleUIXMLWriter()
{
    InitDebugHandle("ModuleUIXMLWriter", &m_debugHandle);
    const FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::ModuleUIXMLWriter", "\n");
}

ModuleUIXMLWriter::~ModuleUIXMLWriter()
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::~ModuleUIXMLWriter", "\n");
    trace.Done(StatusCode::Success);
    UnInitDebugHandle(m_debugHandle);
}

Status ModuleUIXMLWriter::Initialize(std::string moduleName, std::string description)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::Initialize", "\n");
    if (moduleName.empty())
        return trace.Fail(StatusCode::NotFound, "moduleName is empty\n");
    return WithoutExceptions(
        [&]
        {
            CCInitializeXMLParser();
            ForgetDocument();
            m_pDoc = CCXmlCreateDoc(nullptr);
            if (!m_pDoc)
                return trace.Fail(StatusCode::Failed, "CCXmlCreateDoc failed\n");
            m_pRootNode = CCXmlAddNode(nullptr, "TreeItem", nullptr);
            CCXmlSetRootElement(m_pDoc, m_pRootNode);
            CCXmlSetTextAttribute(m_pRootNode, "Name", std::move(moduleName));
            if (!description.empty())
                CCXmlSetTextAttribute(m_pRootNode, "Description", std::move(description));
            m_subModCount = 0;
            m_tabCount = 0;
            m_pItemNode = m_pRootNode;
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::AddSubMod(std::string subModName)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::AddSubMod", "\n");
    if (subModName.empty())
        return trace.Fail(StatusCode::NotFound, "subModName is empty\n");
    if (!m_pDoc || !m_pRootNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        [&]
        {
            if (m_subModCount == 0)
                m_pTreeListNode = AddElement(m_pRootNode, "TreeList");
            m_pItemNode = AddElement(m_pTreeListNode, "TreeItem");
            CCXmlSetTextAttribute(m_pItemNode, "Name", SanitizeText(std::move(subModName)));
            ++m_subModCount;
            m_tabCount = 0;
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::AddTab(std::string tabName, std::string header)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::AddTab", "\n");
    if (tabName.empty() || header.empty())
        return trace.Fail(StatusCode::NotFound, "empty parameter(s)\n");
    if (!m_pDoc || !m_pItemNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        [&]
        {
            if (m_tabCount == 0)
                m_pTabControlNode = AddElement(m_pItemNode, "TabControl");
            m_pTabNode = AddElement(m_pTabControlNode, "Tab");
            CCXmlSetTextAttribute(m_pTabNode, "Name", std::move(tabName));
            m_pGridNode = AddElement(m_pTabNode, "Grid");
            CCXmlAddTextNode(m_pGridNode, "Header", std::move(header));
            ++m_tabCount;
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::AddGroup(std::string groupName)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::AddGroup", "\n");
    if (!m_pDoc || !m_pGridNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        [&]
        {
            m_pGroupNode = AddElement(m_pGridNode, "Group");
            CCXmlSetTextAttribute(m_pGroupNode, "Name", SanitizeText(std::move(groupName)));
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::AddRow(std::string rowContent)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::AddRow", "\n");
    if (rowContent.empty())
        return trace.Fail(StatusCode::NotFound, "rowContent is empty\n");
    if (!m_pDoc || !m_pGroupNode)
        return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
    return WithoutExceptions(
        [&]
        {
            if (!CCXmlAddTextNode(m_pGroupNode, "Row", SanitizeText(std::move(rowContent))))
                return trace.Fail(StatusCode::Missing, "NULL Pointer(s)\n");
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::CopyDataToBuffer(std::string &buffer)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::CopyDataToBuffer", "\n");
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        [&]
        {
            char *block = nullptr;
            std::int32_t size = 0;
            const Status status = CCXmlDocDumpMemory(m_pDoc, &block, &size);
            const std::unique_ptr<char, FreeBlock> owned(block);
            if (status != StatusCode::Success)
                TRACE(trace, TRACE_ERROR, "CCXmlDocDumpMemory failed with %d\n", status);
            if (block)
                buffer.assign(block, static_cast<std::size_t>(size));
            return trace.Done(StatusCode::Success);
        });
}

Status ModuleUIXMLWriter::UnInitialize()
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ModuleUIXMLWriter::UnInitialize", "\n");
    if (!m_pDoc)
    {
        trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
        CCDeInitializeXMLParser();
        return StatusCode::Missing;
    }
    ForgetDocument();
    CCDeInitializeXMLParser();
    return trace.Done(StatusCode::Success);
}

void ModuleUIXMLWriter::ForgetDocument()
{
    if (m_pDoc)
        CCXmlFreeDocPtr(m_pDoc);
    m_pDoc = nullptr;
    for (xmlNodePtr *node :
         {&m_pRootNode, &m_pTreeListNode, &m_pItemNode, &m_pTabControlNode, &m_pTabNode, &m_pGridNode, &m_pGroupNode})
        *node = nullptr;
}
