#include "xmlInterface.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "Platform.h"
#include "ReplacedFile.h"
#include "xmlInterfaceText.h"

#include <cstdlib>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <utility>

namespace
{

std::int32_t xmlParserRefCount = 0;
TraceSource xmlTrace("XMLParser", "xmlInterface");

const xmlChar *AsXml(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

#if LIBXML_VERSION >= 21200
using ErrorRecord = const xmlError *;
#else
using ErrorRecord = xmlErrorPtr;
#endif

void IgnoreError(void * /*context*/, ErrorRecord /*error*/) {}

/// libxml2's error handler, as the outermost CCXmlQuiet found it.
struct ErrorHandler
{
    xmlStructuredErrorFunc function = nullptr;
    void *context = nullptr;
};
ErrorHandler foundHandler;
std::uint32_t quietDepth = 0;

struct FreeXmlMemory
{
    void operator()(xmlChar *memory) const { xmlFree(memory); }
};

/// Whether an attribute that was set is there with its value; libxml2 leaves them out where memory did not suffice.
bool HasAttribute(xmlNodePtr node, const char *name, bool empty)
{
    const xmlAttr *const attribute = xmlHasProp(node, AsXml(name));
    return attribute && (empty || attribute->children);
}

struct FreeNode
{
    void operator()(xmlNodePtr node) const { xmlFreeNode(node); }
};

/// xmlNewNode and xmlNodeSetContent; null when memory did not suffice for all of it.
xmlNodePtr NewElement(const char *name, const char *content)
{
    std::unique_ptr<xmlNode, FreeNode> node(xmlNewNode(nullptr, AsXml(name)));
    if (!node || !node->name)
        return nullptr;
    if (content)
        xmlNodeSetContent(node.get(), AsXml(content));
    return content && *content && !node->children ? nullptr : node.release();
}

/// Appends `node`, or frees it when that fails.
xmlNodePtr AppendChild(xmlNodePtr parent, xmlNodePtr node)
{
    const xmlNodePtr added = xmlAddChild(parent, node);
    if (!added)
        xmlFreeNode(node);
    return added;
}

/// A block of libxml2's as one of the C heap. Taken over as it is unless the host gave libxml2 an allocator of its own.
char *MoveToCHeap(xmlChar *block, std::size_t size)
{
    if (xmlFree == static_cast<xmlFreeFunc>(std::free))
        return reinterpret_cast<char *>(block);
    const std::unique_ptr<xmlChar, FreeXmlMemory> owned(block);
    char *const copy = static_cast<char *>(std::malloc(size + 1));
    if (copy)
        std::memcpy(copy, block, size + 1);
    return copy;
}

/// What xmlSaveFile does, through a stream of the platform: xmlSaveFile takes "%41" in a path for "A".
bool WriteInPlace(const std::string &fileName, xmlDocPtr document)
{
    Platform::StreamOwner stream = Platform::OpenStream(fileName, "wb");
    if (!stream || xmlDocDump(stream.get(), document) == -1)
        return false;
    return std::fclose(stream.release()) == 0;
}

int ReadStream(void *stream, char *bytes, int size)
{
    auto *const file = static_cast<std::FILE *>(stream);
    const std::size_t count = std::fread(bytes, 1, static_cast<std::size_t>(size), file);
    return std::ferror(file) ? -1 : static_cast<int>(count);
}

/// What xmlReadFile does, through a stream of the platform: xmlReadFile also takes addresses of the network, "-" for
/// standard input, "%41" for "A", and on Windows names that are not in the ANSI code page.
xmlDocPtr ReadDocument(const char *fileName)
{
    const Platform::StreamOwner stream = Platform::OpenStream(fileName, "rb");
    return stream ? xmlReadIO(ReadStream, nullptr, stream.get(), nullptr, nullptr, 0) : nullptr;
}

/// Writes in place only where the folder takes no new file or the system refuses the rename, never after a write that
/// failed: what is there then stays.
bool Save(const std::string &fileName, xmlDocPtr document)
{
    const CCXmlQuiet quiet;
    Platform::ReplacedFile file(fileName);
    if (!file.Open())
        return WriteInPlace(fileName, document);
    const bool written = xmlDocDump(file.Stream(), document) != -1 && file.Finish();
    return written && (file.Commit() || WriteInPlace(fileName, document));
}

} // namespace

CCXmlQuiet::CCXmlQuiet()
{
    if (quietDepth++ > 0)
        return;
    foundHandler = {xmlStructuredError, xmlStructuredErrorContext};
    xmlSetStructuredErrorFunc(nullptr, IgnoreError);
}

CCXmlQuiet::~CCXmlQuiet()
{
    if (--quietDepth == 0)
        xmlSetStructuredErrorFunc(foundHandler.context, foundHandler.function);
}

Status CCInitializeXMLParser()
{
    if (xmlParserRefCount == 0)
        xmlTrace.Open();
    ++xmlParserRefCount;
    const FunctionTrace trace(xmlTrace, "CCInitializeXMLParser");
    trace.Text(TRACE_ENTRY, "Entered CCInitializeXMLParser");
    trace.Text(TRACE_EXIT, "Exiting CCInitializeXMLParser");
    return StatusCode::Success;
}

Status CCDeInitializeXMLParser()
{
    const FunctionTrace trace(xmlTrace, "CCDeInitializeXMLParser");
    trace.Text(TRACE_ENTRY, "Entered DeInitializeXMLParser");
    trace.Text(TRACE_EXIT, "Exiting DeInitializeXMLParser");
    --xmlParserRefCount;
    if (xmlParserRefCount == 0)
        xmlTrace.Close();
    return StatusCode::Success;
}

xmlDocPtr CCXmlParseXMLfile(const char *fileName)
{
    const FunctionTrace trace(xmlTrace, "CCXmlParseXMLfile");
    TRACE(trace, TRACE_ENTRY, "File name passed is %s", fileName);
    xmlDocPtr document = nullptr;
    WithoutExceptions(
        [&]
        {
            const CCXmlQuiet quiet;
            if (fileName)
                document = ReadDocument(fileName);
            return StatusCode::Success;
        });
    if (!document)
    {
        TRACE(trace, TRACE_ERROR, "Failed to read the XML file %p", static_cast<void *>(document));
        trace.Text(TRACE_EXIT, "return NULL");
        return nullptr;
    }
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(document));
    return document;
}

xmlDocPtr CCXmlParseXMLBuffer(const char *buffer, std::int32_t size)
{
    const FunctionTrace trace(xmlTrace, "CCXmlParseXMLBuffer");
    TRACE(trace, TRACE_ENTRY, "buffer address = 0x%p  size=%d", static_cast<const void *>(buffer), size);
    const CCXmlQuiet quiet;
    const xmlDocPtr document = xmlRecoverMemory(buffer, size);
    if (!document)
        TRACE(trace, TRACE_ERROR, "Failed to read the XML file %p", static_cast<void *>(document));
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(document));
    return document;
}

void CCXmlPadBuffer(std::string &buffer)
{
    // Several times the distance from the end at which libxml2 looks for more.
    constexpr std::size_t kPadding = std::size_t{16} * INPUT_CHUNK;
    if (buffer.size() > XML_MAX_LOOKUP_LIMIT - kPadding)
        buffer.append(kPadding, ' ');
}

xmlDocPtr CCXmlCreateDoc(const char *version)
{
    const FunctionTrace trace(xmlTrace, "CCXmlCreateDoc");
    TRACE(trace, TRACE_ENTRY, "Version passed is %s", version);
    const CCXmlQuiet quiet;
    const xmlDocPtr document = xmlNewDoc(AsXml(version));
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(document));
    return document;
}

xmlNodePtr CCXmlGetRootElement(xmlDocPtr document)
{
    const FunctionTrace trace(xmlTrace, "CCXmlGetRootElement");
    TRACE(trace, TRACE_ENTRY, "Document pointer Passed is %p", static_cast<void *>(document));
    if (!document)
    {
        trace.Text(TRACE_EXIT, "Return NULL");
        return nullptr;
    }
    const xmlNodePtr root = xmlDocGetRootElement(document);
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(root));
    return root;
}

xmlNodePtr CCXmlSetRootElement(xmlDocPtr document, xmlNodePtr root)
{
    const FunctionTrace trace(xmlTrace, "CCXmlSetRootElement");
    TRACE(trace, TRACE_ENTRY, "Document pointer Passed is %p, Root node %p", static_cast<void *>(document),
          static_cast<void *>(root));
    if (!document || !root)
    {
        trace.Text(TRACE_EXIT, "Return NULL");
        return nullptr;
    }
    xmlDocSetRootElement(document, root);
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(root));
    return root;
}

const char *CCXmlGetNodeElementName(xmlNodePtr node)
{
    const FunctionTrace trace(xmlTrace, "CCXmlGetNodeElementName");
    TRACE(trace, TRACE_ENTRY, "Node Pointer passed is %p", static_cast<void *>(node));
    if (!node)
    {
        trace.Text(TRACE_EXIT, "Return NULL");
        return nullptr;
    }
    const char *const name = reinterpret_cast<const char *>(node->name);
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<const void *>(name));
    return name;
}

xmlNodePtr CCXmlGetNextNodeChild(xmlNodePtr parent, xmlNodePtr sibling)
{
    const FunctionTrace trace(xmlTrace, "CCXmlGetNextNodeChild");
    TRACE(trace, TRACE_ENTRY, "node parent %p , nodesibling %p", static_cast<void *>(parent),
          static_cast<void *>(sibling));
    if (!parent)
    {
        trace.Text(TRACE_EXIT, "Return NULL");
        return nullptr;
    }
    const xmlNodePtr next = sibling ? sibling->next : parent->children;
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(next));
    return next;
}

xmlNodePtr CCXmlAddNode(xmlNodePtr parent, const char *name, const char *content)
{
    const FunctionTrace trace(xmlTrace, "CCXmlAddNode");
    TRACE(trace, TRACE_ENTRY, "Current Node %p, Node Name %s, Node Value %s", static_cast<void *>(parent), name,
          content);
    if (!name)
    {
        trace.Error("XML pointer passed is NULL");
        trace.Text(TRACE_EXIT, "return status NULL");
        return nullptr;
    }
    const CCXmlQuiet quiet;
    xmlNodePtr node = NewElement(name, content);
    if (node && parent)
        node = AppendChild(parent, node);
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(node));
    return node;
}

Status CCXmlDocDumpMemory(xmlDocPtr document, char **memory, std::int32_t *size)
{
    const FunctionTrace trace(xmlTrace, "CCXmlDocDumpMemory");
    if (!memory)
    {
        TRACE(trace, TRACE_ENTRY, "Document Pointer %p, Memory size %p", static_cast<void *>(document),
              static_cast<void *>(size));
        trace.Error("Memory pointer passed is NULL");
        return StatusCode::Missing;
    }
    TRACE(trace, TRACE_ENTRY, "Document Pointer %p, Memory Pointer %p, Memory size %p", static_cast<void *>(document),
          static_cast<void *>(memory), static_cast<void *>(size));
    if (!document || !size)
    {
        trace.Error("Document Pointer or Memory pointer passed is NULL");
        return StatusCode::Missing;
    }
    const CCXmlQuiet quiet;
    xmlChar *block = nullptr;
    int length = 0;
    xmlDocDumpMemory(document, &block, &length);
    char *const copy = block ? MoveToCHeap(block, static_cast<std::size_t>(length)) : nullptr;
    if (!copy)
        return StatusCode::Missing;
    *memory = copy;
    *size = length;
    TRACE(trace, TRACE_EXIT, "return status %d", StatusCode::Success);
    return StatusCode::Success;
}

Status CCXmlSave(const char *fileName, xmlDocPtr document)
{
    const FunctionTrace trace(xmlTrace, "CCXmlSave");
    TRACE(trace, TRACE_ENTRY, "File name %s, Document Pointer %p", fileName, static_cast<void *>(document));
    Status status = StatusCode::Failed;
    if (!fileName || !document)
        trace.Error("File name passed is NULL");
    else
    {
        const auto save = [&] { return Save(fileName, document) ? StatusCode::Success : StatusCode::Failed; };
        status = WithoutExceptions(save) == StatusCode::Success ? StatusCode::Success : StatusCode::Failed;
    }
    TRACE(trace, TRACE_EXIT, "return status %d", status);
    return status;
}

Status CCXmlFreeDocPtr(xmlDocPtr document)
{
    const FunctionTrace trace(xmlTrace, "CCXmlFreeDocPtr");
    TRACE(trace, TRACE_ENTRY, "Document Pointer %p", static_cast<void *>(document));
    if (!document)
    {
        trace.Text(TRACE_EXIT, "Document Pointer passed is NULL");
        return StatusCode::Failed;
    }
    xmlFreeDoc(document);
    return StatusCode::Success;
}

void CCXmlFreeNode(xmlNodePtr node)
{
    // Other kinds may belong to more than their parent, as an entity's declaration does to the document type.
    if (!node || node->type != XML_ELEMENT_NODE)
        return;
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

char *CCXmlGetAttributeValue(xmlNodePtr node, const char *attributeName)
{
    const FunctionTrace trace(xmlTrace, "CCXmlGetAttributeValue");
    TRACE(trace, TRACE_ENTRY, "Node %p, Attribute Name %s", static_cast<void *>(node), attributeName);
    if (!node || !attributeName)
    {
        trace.Error("Node or attribute name passed is NULL");
        trace.Text(TRACE_EXIT, "Return NULL");
        return nullptr;
    }
    const CCXmlQuiet quiet;
    char *const value = reinterpret_cast<char *>(xmlGetProp(node, AsXml(attributeName)));
    TRACE(trace, TRACE_EXIT, "Return value %s", value);
    return value;
}

void CCXmlFreeValue::operator()(char *value) const
{
    xmlFree(value);
}

void CCXmlSetAttributeValue(xmlNodePtr node, const char *attributeName, const char *value)
{
    const FunctionTrace trace(xmlTrace, "CCXmlSetAttributeValue");
    TRACE(trace, TRACE_ENTRY, "Node %p, Attribute Name %s, Attribute Value %s", static_cast<void *>(node),
          attributeName, value);
    const CCXmlQuiet quiet;
    if (!node || !attributeName || !value)
        trace.Error("Node or attribute name or attribute value passed is NULL");
    else
        xmlSetProp(node, AsXml(attributeName), AsXml(value));
    trace.Text(TRACE_EXIT, "");
}

xmlNodePtr CCXmlAddTextNode(xmlNodePtr parent, const char *name, std::string text)
{
    if (!parent)
        return nullptr;
    return CCXmlAddNode(parent, name, EscapeReferences(MakeXmlText(std::move(text))).c_str());
}

void CCXmlSetTextAttribute(xmlNodePtr node, const char *attributeName, std::string text)
{
    const std::string value = MakeXmlText(std::move(text));
    CCXmlSetAttributeValue(node, attributeName, value.c_str());
    if (node && attributeName && !HasAttribute(node, attributeName, value.empty()))
        throw std::bad_alloc();
}
