#include "ModuleXMLWriter.h"

#include <cstdlib>
#include <utility>

namespace
{

constexpr const char *kNameAttribute = "Name";

struct FreeBlock
{
    void operator()(char *block) const { std::free(block); }
};

} // namespace

bool ModuleXMLWriter::StartDocument(WriterOperation &operation, const char *rootName, std::string moduleName)
{
    CCInitializeXMLParser();
    ForgetDocument();
    m_pDoc = CCXmlCreateDoc(nullptr);
    operation.Check(m_pDoc != nullptr, StatusCode::Failed, "CCXmlCreateDoc failed\n");
    if (!m_pDoc)
        return false;
    m_pRootNode = CCXmlAddNode(nullptr, rootName, nullptr);
    CCXmlSetRootElement(m_pDoc, m_pRootNode);
    CCXmlSetTextAttribute(m_pRootNode, kNameAttribute, std::move(moduleName));
    return true;
}

Status ModuleXMLWriter::CopyDocument(WriterOperation &&operation, std::string &buffer) const
{
    const auto copy = [&]
    {
        char *block = nullptr;
        std::int32_t size = 0;
        const Status status = CCXmlDocDumpMemory(m_pDoc, &block, &size);
        const std::unique_ptr<char, FreeBlock> owned(block);
        if (status != StatusCode::Success)
            TRACE(operation.Trace(), TRACE_ERROR, "CCXmlDocDumpMemory failed with %d\n", status);
        if (block)
            buffer.assign(block, static_cast<std::size_t>(size));
    };
    return operation.Needs(m_pDoc, "NULL Pointer:m_pDoc\n").Run(copy);
}

Status ModuleXMLWriter::GiveUpDocument(WriterOperation &&operation)
{
    const auto giveUp = [this]
    {
        ForgetDocument();
        CCDeInitializeXMLParser();
    };
    const Status status = operation.Needs(m_pDoc, "NULL Pointer:m_pDoc\n").Run(giveUp);
    if (status != StatusCode::Success)
        CCDeInitializeXMLParser();
    return status;
}

xmlNodePtr ModuleXMLWriter::AddElement(xmlNodePtr parent, const char *element)
{
    return parent ? CCXmlAddNode(parent, element, nullptr) : nullptr;
}

xmlNodePtr ModuleXMLWriter::AddNamedElement(xmlNodePtr parent, const char *element, std::string name)
{
    const xmlNodePtr node = AddElement(parent, element);
    CCXmlSetTextAttribute(node, kNameAttribute, std::move(name));
    return node;
}

void ModuleXMLWriter::ForgetDocument()
{
    if (m_pDoc)
        CCXmlFreeDocPtr(m_pDoc);
    m_pDoc = nullptr;
    m_pRootNode = nullptr;
    ForgetNodes();
}
