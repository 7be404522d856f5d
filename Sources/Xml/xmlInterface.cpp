#include "xmlInterface.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "Platform.h"
#include "ReplacedFile.h"
#include "xmlInterfaceText.h"
#include "xmlSavedForm.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

namespace
{

std::int32_t xmlParserRefCount = 0;
TraceSource xmlTrace("XMLParser", "xmlInterface");

const xmlChar *AsXml(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

/// libxml2's error handler, as the outermost CCXmlQuiet found it.
struct ErrorHandler
{
    xmlStructuredErrorFunc function = nullptr;
    void *context = nullptr;
};
ErrorHandler foundHandler;
std::uint32_t quietDepth = 0;

/// Whether libxml2 has told of memory that it could not get, since this was last set to false.
bool lackedMemory = false;

/// One piece of work of libxml2's: did it have the memory? Some of its functions only tell, and go on with less.
class MemoryWatch
{
public:
    MemoryWatch() { lackedMemory = false; }
    bool Lacked() const { return lackedMemory; }
};

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
    const MemoryWatch memory;
    std::unique_ptr<xmlNode, FreeNode> node(xmlNewNode(nullptr, AsXml(name)));
    if (!node || !node->name)
        return nullptr;
    if (content)
        xmlNodeSetContent(node.get(), AsXml(content));
    return memory.Lacked() || (content && *content && !node->children) ? nullptr : node.release();
}

/// An element with a text that holds no references. (xmlNodeSetContent keeps a block when memory does not suffice for
/// one with references.) Throws std::bad_alloc.
xmlNodePtr NewTextElement(const char *name, const char *text)
{
    std::unique_ptr<xmlNode, FreeNode> node(NewElement(name, nullptr));
    std::unique_ptr<xmlNode, FreeNode> child(node && *text ? xmlNewText(AsXml(text)) : nullptr);
    if (!node || (*text && (!child || !child->content)))
        throw std::bad_alloc();
    if (child)
        xmlAddChild(node.get(), child.release());
    return node.release();
}

/// Appends `node`, or frees it when that fails.
xmlNodePtr AppendChild(xmlNodePtr parent, xmlNodePtr node)
{
    const xmlNodePtr added = xmlAddChild(parent, node);
    if (!added)
        xmlFreeNode(node);
    return added;
}

struct FreeParser
{
    void operator()(xmlParserCtxtPtr parser) const { xmlFreeParserCtxt(parser); }
};
using ParserOwner = std::unique_ptr<xmlParserCtxt, FreeParser>;

struct FreeParsed
{
    void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
using ParsedOwner = std::unique_ptr<xmlDoc, FreeParsed>;

/// What a parser tells while it reads a text in recovery mode.
struct Recovery
{
    CCXmlRecovery reading;
    bool declaresEntities = false;
    bool gaveUpBehindRoot = false;
};

Recovery &RecoveryOf(xmlParserCtxtPtr parser)
{
    return *static_cast<Recovery *>(parser->_private);
}

/// The root element has ended, so nothing is lost: a long text is given up behind it (CCXmlPadBuffer).
bool IsBehindRoot(const xmlParserCtxt &parser)
{
    return !parser.node && xmlDocGetRootElement(parser.myDoc);
}

void RecordError(xmlParserCtxtPtr parser, const xmlError &error)
{
    Recovery &recovery = RecoveryOf(parser);
    if (error.code == XML_ERR_NO_MEMORY)
        lackedMemory = true;
    else if (error.code == XML_ERR_INTERNAL_ERROR && IsBehindRoot(*parser))
        recovery.gaveUpBehindRoot = true;
    else if (error.level == XML_ERR_FATAL && !recovery.reading.damaged)
        recovery.reading = {true, error.line};
}

void RefuseEntities(void *parser)
{
    RecoveryOf(static_cast<xmlParserCtxtPtr>(parser)).declaresEntities = true;
    xmlStopParser(static_cast<xmlParserCtxtPtr>(parser));
}

void DeclareEntity(void *parser, const xmlChar *name, int type, const xmlChar *publicId, const xmlChar *systemId,
                   xmlChar *content)
{
    if (type == XML_INTERNAL_PARAMETER_ENTITY || type == XML_EXTERNAL_PARAMETER_ENTITY)
        xmlSAX2EntityDecl(parser, name, type, publicId, systemId, content);
    else
        RefuseEntities(parser);
}

void DeclareUnparsedEntity(void *parser, const xmlChar * /*name*/, const xmlChar * /*publicId*/,
                           const xmlChar * /*systemId*/, const xmlChar * /*notation*/)
{
    RefuseEntities(parser);
}

/// What xmlReadMemory does in recovery mode, but for a text that declares general entities, which gives no document.
/// Throws std::bad_alloc where libxml2 tells of memory that it could not get.
ParsedOwner Recover(const char *buffer, std::int32_t size, CCXmlRecovery &reading)
{
    const MemoryWatch memory;
    const ParserOwner parser(xmlNewParserCtxt());
    if (!parser)
        throw std::bad_alloc();
    Recovery recovery;
    parser->_private = &recovery;
    // The type of the second argument changed with libxml2 2.12.
    parser->sax->serror = [](void *context, auto *error)
    { RecordError(static_cast<xmlParserCtxtPtr>(context), *error); };
    parser->sax->entityDecl = DeclareEntity;
    parser->sax->unparsedEntityDecl = DeclareUnparsedEntity;
    ParsedOwner document(xmlCtxtReadMemory(parser.get(), buffer, size, nullptr, nullptr, XML_PARSE_RECOVER));
    if (memory.Lacked())
        throw std::bad_alloc();
    reading = recovery.reading;
    reading.damaged = reading.damaged || (parser->wellFormed == 0 && !recovery.gaveUpBehindRoot);
    return recovery.declaresEntities ? nullptr : std::move(document);
}

/// Recover, which has to see damage twice to believe it: libxml2 takes some memory that it could not get for damage.
xmlDocPtr RecoverSurely(const char *buffer, std::int32_t size, CCXmlRecovery &reading)
{
    ParsedOwner document = Recover(buffer, size, reading);
    if (reading.damaged || !document)
        document = Recover(buffer, size, reading);
    return document.release();
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

bool LacksMemory(xmlParserCtxtPtr parser)
{
    const auto *const error = xmlCtxtGetLastError(parser);
    return error && error->code == XML_ERR_NO_MEMORY;
}

/// Parses a text strictly; `document` is null when there is none.
CCXmlReading ParseStrictly(std::string_view text, xmlDocPtr &document)
{
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return CCXmlReading::NoMemory;
    const ParserOwner parser(xmlNewParserCtxt());
    if (!parser)
        return CCXmlReading::NoMemory;
    document = xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0);
    if (document)
        return CCXmlReading::Read;
    return LacksMemory(parser.get()) ? CCXmlReading::NoMemory : CCXmlReading::NotWellFormed;
}

/// Takes the root's children out of `text`, where that may be done.
void OmitChildren(std::string &text, CCXmlOmitted &omitted)
{
    const std::string_view children = RootChildrenInSavedForm(text);
    omitted.text = children;
    if (children.empty())
        return;
    omitted.position = static_cast<std::size_t>(children.data() - text.data());
    text.erase(omitted.position, children.size());
}

/// What xmlReadFile does, through a stream of the platform: xmlReadFile also takes addresses of the network, "-" for
/// standard input, "%41" for "A", and on Windows names that are not in the ANSI code page.
CCXmlReading ReadDocument(const char *fileName, xmlDocPtr &document, CCXmlOmitted *omitted)
{
    const Platform::StreamOwner stream = Platform::OpenStream(fileName, "rb");
    std::string text;
    if (!stream || !Platform::ReadBytes(stream.get(), text))
        return CCXmlReading::Unreadable;
    if (omitted)
        OmitChildren(text, *omitted);
    const CCXmlReading reading = ParseStrictly(text, document);
    // libxml2 takes some allocations that failed for damage, so it has to see damage twice.
    return reading == CCXmlReading::NotWellFormed ? ParseStrictly(text, document) : reading;
}

bool WritePieces(std::FILE *stream, std::initializer_list<std::string_view> pieces)
{
    return std::all_of(pieces.begin(), pieces.end(),
                       [stream](std::string_view piece)
                       { return std::fwrite(piece.data(), 1, piece.size(), stream) == piece.size(); });
}

/// A document's text, in `encoding` or by default in its own.
class DumpedText
{
public:
    explicit DumpedText(xmlDocPtr document, const char *encoding = nullptr)
    {
        xmlChar *block = nullptr;
        xmlDocDumpMemoryEnc(document, &block, &m_size, encoding);
        m_block.reset(block);
        if (!block)
            throw std::bad_alloc();
    }
    std::string_view Get() const
    {
        return {reinterpret_cast<const char *>(m_block.get()), static_cast<std::size_t>(m_size)};
    }

private:
    std::unique_ptr<xmlChar, FreeXmlMemory> m_block;
    int m_size = 0;
};

/// Some encodings, such as UTF-7, also hide the declaration that names them: nobody could read the file again.
DumpedText DumpReadably(xmlDocPtr document)
{
    DumpedText text(document);
    const bool declares = text.Get().starts_with('<') || text.Get().starts_with("\xFF\xFE");
    return declares ? std::move(text) : DumpedText(document, "UTF-8");
}

/// What xmlSaveFile does, through a stream of the platform: xmlSaveFile takes "%41" in a path for "A".
bool Write(std::FILE *stream, xmlDocPtr document, const CCXmlOmitted *omitted)
{
    const DumpedText dumped = DumpReadably(document);
    const std::string_view text = dumped.Get();
    const CCXmlOmitted none;
    const CCXmlOmitted &left = omitted ? *omitted : none;
    return WritePieces(stream, {text.substr(0, left.position), left.text, text.substr(left.position)});
}

/// Throws std::bad_alloc where libxml2 had no memory for the whole document.
bool Save(const std::string &fileName, xmlDocPtr document, const CCXmlOmitted *omitted)
{
    const CCXmlQuiet quiet;
    Platform::ReplacedFile file(fileName);
    if (!file.Open())
        return false;
    const MemoryWatch memory;
    const bool written = Write(file.Stream(), document, omitted);
    if (memory.Lacked())
        throw std::bad_alloc();
    return written && file.Commit();
}

} // namespace

CCXmlQuiet::CCXmlQuiet()
{
    if (quietDepth++ > 0)
        return;
    foundHandler = {xmlStructuredError, xmlStructuredErrorContext};
    // The type of the second argument changed with libxml2 2.12.
    xmlSetStructuredErrorFunc(nullptr, [](void * /*context*/, auto *error)
                              { lackedMemory = lackedMemory || (error && error->code == XML_ERR_NO_MEMORY); });
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

xmlDocPtr CCXmlParseXMLfile(const char *fileName, CCXmlReading *reading, CCXmlOmitted *omitted)
{
    const FunctionTrace trace(xmlTrace, "CCXmlParseXMLfile");
    TRACE(trace, TRACE_ENTRY, "File name passed is %s", fileName);
    xmlDocPtr document = nullptr;
    CCXmlReading outcome = CCXmlReading::Unreadable;
    const Status status = WithoutExceptions(
        [&]
        {
            const CCXmlQuiet quiet;
            if (fileName)
                outcome = ReadDocument(fileName, document, omitted);
            return StatusCode::Success;
        });
    if (reading)
        *reading = status == StatusCode::NoMemory ? CCXmlReading::NoMemory : outcome;
    if (!document)
    {
        TRACE(trace, TRACE_ERROR, "Failed to read the XML file %p", static_cast<void *>(document));
        trace.Text(TRACE_EXIT, "return NULL");
        return nullptr;
    }
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(document));
    return document;
}

xmlDocPtr CCXmlParseXMLBuffer(const char *buffer, std::int32_t size, CCXmlRecovery *reading)
{
    const FunctionTrace trace(xmlTrace, "CCXmlParseXMLBuffer");
    TRACE(trace, TRACE_ENTRY, "buffer address = 0x%p  size=%d", static_cast<const void *>(buffer), size);
    xmlDocPtr document = nullptr;
    CCXmlRecovery outcome;
    const Status status = WithoutExceptions(
        [&]
        {
            const CCXmlQuiet quiet;
            document = RecoverSurely(buffer, size, outcome);
            return StatusCode::Success;
        });
    outcome.lackedMemory = status == StatusCode::NoMemory;
    if (reading)
        *reading = outcome;
    if (!document)
        TRACE(trace, TRACE_ERROR, "Failed to read the XML file %p", static_cast<void *>(document));
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(document));
    return document;
}

void CCXmlPadBuffer(std::string &buffer)
{
    // Several times the distance from the end at which libxml2 looks for more (250 bytes).
    constexpr std::size_t kPadding = 4000;
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
    const MemoryWatch watch;
    xmlChar *block = nullptr;
    int length = 0;
    xmlDocDumpMemory(document, &block, &length);
    std::unique_ptr<xmlChar, FreeXmlMemory> whole(watch.Lacked() ? nullptr : block);
    if (block && !whole)
        xmlFree(block); // a part
    char *const copy = whole ? MoveToCHeap(whole.release(), static_cast<std::size_t>(length)) : nullptr;
    if (!copy)
        return StatusCode::Missing;
    *memory = copy;
    *size = length;
    TRACE(trace, TRACE_EXIT, "return status %d", StatusCode::Success);
    return StatusCode::Success;
}

Status CCXmlSave(const char *fileName, xmlDocPtr document, const CCXmlOmitted *omitted)
{
    const FunctionTrace trace(xmlTrace, "CCXmlSave");
    TRACE(trace, TRACE_ENTRY, "File name %s, Document Pointer %p", fileName, static_cast<void *>(document));
    Status status = StatusCode::Failed;
    if (!fileName || !document)
        trace.Error("File name passed is NULL");
    else
    {
        status = WithoutExceptions(
            [&] { return Save(fileName, document, omitted) ? StatusCode::Success : StatusCode::Failed; });
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

CCXmlValueOwner CCXmlReadAttribute(xmlNodePtr node, const char *attributeName)
{
    const MemoryWatch memory;
    CCXmlValueOwner value(CCXmlGetAttributeValue(node, attributeName));
    if (memory.Lacked() || (!value && node && attributeName && xmlHasProp(node, AsXml(attributeName))))
        throw std::bad_alloc();
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
    if (!parent || !name)
        return parent ? CCXmlAddNode(parent, name, text.c_str()) : nullptr;
    const FunctionTrace trace(xmlTrace, "CCXmlAddNode");
    const std::string content = MakeXmlText(std::move(text));
    TRACE(trace, TRACE_ENTRY, "Current Node %p, Node Name %s, Node Value %s", static_cast<void *>(parent), name,
          EscapeReferences(content).c_str());
    const CCXmlQuiet quiet;
    const xmlNodePtr node = AppendChild(parent, NewTextElement(name, content.c_str()));
    TRACE(trace, TRACE_EXIT, "return status %p", static_cast<void *>(node));
    return node;
}

void CCXmlSetTextAttribute(xmlNodePtr node, const char *attributeName, std::string text)
{
    const std::string value = MakeXmlText(std::move(text));
    const MemoryWatch memory;
    CCXmlSetAttributeValue(node, attributeName, value.c_str());
    if (memory.Lacked() || (node && attributeName && !HasAttribute(node, attributeName, value.empty())))
        throw std::bad_alloc();
}
