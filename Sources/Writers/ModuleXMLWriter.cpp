#include "ModuleXMLWriter.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace
{

constexpr const char *kNameAttribute = "Name";

struct FreeBlock
{
    void operator()(char *block) const { std::free(block); }
};

} // namespace

bool ModuleXMLWriter::StartDocument(const char *rootName, std::string moduleName)
{
    m_bracket.emplace();
    ForgetDocument();
    m_pDoc.reset(CCXmlCreateDoc(nullptr));
    if (!m_pDoc)
        return false;
    m_pRootNode = CCXmlAddNode(nullptr, rootName, nullptr);
    if (!m_pRootNode)
        throw std::bad_alloc();
    CCXmlSetRootElement(m_pDoc.get(), m_pRootNode);
    CCXmlSetTextAttribute(m_pRootNode, kNameAttribute, std::move(moduleName));
    return true;
}

Status ModuleXMLWriter::DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer)
{
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    char *block = nullptr;
    std::int32_t size = 0;
    const Status status = CCXmlDocDumpMemory(m_pDoc.get(), &block, &size);
    const std::unique_ptr<char, FreeBlock> owned(block);
    if (status != StatusCode::Success)
    {
        TRACE(trace, TRACE_ERROR, "CCXmlDocDumpMemory failed with %d\n", status);
        throw std::bad_alloc(); // the only cause that is left
    }
    buffer.assign(block, static_cast<std::size_t>(size));
    return trace.Done(StatusCode::Success);
}

Status ModuleXMLWriter::DoUnInitialize(FunctionTrace &trace)
{
    if (!m_pDoc)
    {
        trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
        m_bracket.reset();
        return StatusCode::Missing;
    }
    ForgetDocument();
    m_bracket.reset();
    return trace.Done(StatusCode::Success);
}

xmlNodePtr ModuleXMLWriter::AddElement(xmlNodePtr parent, const char *element)
{
    const xmlNodePtr node = parent ? CCXmlAddNode(parent, element, nullptr) : nullptr;
    if (parent && !node)
        throw std::bad_alloc();
    return node;
}

xmlNodePtr ModuleXMLWriter::AddNamedElement(xmlNodePtr parent, const char *element, std::string name)
{
    NewElement node(AddElement(parent, element));
    CCXmlSetTextAttribute(node.get(), kNameAttribute, std::move(name));
    return node.release();
}

void ModuleXMLWriter::ForgetDocument()
{
    m_pDoc.reset();
    m_pRootNode = nullptr;
    ForgetNodes();
}
