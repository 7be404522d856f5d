#pragma once

#include "StatusCode.h"

#include <cstdint>
#include <memory>
#include <string>

/// The module's only way to libxml2. Documents and nodes are libxml2's own and pass through as opaque pointers; a node
/// belongs to its document. Texts are zero-terminated UTF-8; file names are path texts of the platform edge. The layer
/// is used from one thread at a time. libxml2's messages are swallowed, and its error handlers are left as they were.

struct _xmlDoc;
struct _xmlNode;
using xmlDocPtr = _xmlDoc *;
using xmlNodePtr = _xmlNode *;

/// Opens a bracket of XML work: the first opens the layer's trace handle "XMLParser". Always Success. Every operation
/// also works outside brackets, without trace lines.
Status CCInitializeXMLParser();

/// Closes a bracket; the last one releases the trace handle. Always Success.
Status CCDeInitializeXMLParser();

/// A bracket of XML work that is open while the object lives.
class CCXmlBracket
{
public:
    CCXmlBracket() { CCInitializeXMLParser(); }
    ~CCXmlBracket() { CCDeInitializeXMLParser(); }
    CCXmlBracket(const CCXmlBracket &) = delete;
    CCXmlBracket &operator=(const CCXmlBracket &) = delete;
};

/// What became of reading a document's file.
enum class CCXmlReading
{
    Read,
    NotWellFormed,
    /// The file could not be opened or not be read to its end.
    Unreadable,
    NoMemory
};

/// Keeps libxml2's messages from the host's standard error while it lives. Every operation has one of its own where it
/// needs one; one around many operations makes each of them cheaper.
class CCXmlQuiet
{
public:
    CCXmlQuiet();
    ~CCXmlQuiet();
    CCXmlQuiet(const CCXmlQuiet &) = delete;
    CCXmlQuiet &operator=(const CCXmlQuiet &) = delete;
};

/// The children of a root that its tree leaves out, as text, and where they stand in the saved document.
struct CCXmlOmitted
{
    std::string text;
    std::size_t position = 0;
};

/// Parses the file (xmlReadFile, strict). The caller owns the document (CCXmlFreeDocPtr); null when there is none; then
/// `reading`, if given, tells why. With `omitted`, for a caller that only adds to the root: where the file is just what
/// CCXmlSave writes, the root's children are checked and left out of the tree, which takes a small part of the time.
xmlDocPtr CCXmlParseXMLfile(const char *fileName, CCXmlReading *reading = nullptr, CCXmlOmitted *omitted = nullptr);

/// How well a text could be parsed in recovery mode.
struct CCXmlRecovery
{
    /// The text is not well-formed.
    bool damaged = false;
    /// The line in which libxml2 noticed that first.
    std::int32_t line = 0;
    bool lackedMemory = false;
};

/// Parses `size` bytes in recovery mode (as xmlRecoverMemory does): damaged text gives the tree that could be built.
/// The caller owns the document; null when nothing could be built, memory ran out, or the text declares general
/// entities: a few kilobytes of those can stand for gigabytes.
xmlDocPtr CCXmlParseXMLBuffer(const char *buffer, std::int32_t size, CCXmlRecovery *reading = nullptr);

/// Puts blanks behind a text of more than 10 MB that is to be parsed. libxml2 gives up a long text when it comes near
/// its end, and would lose the last element; blanks behind the root element are lost instead. May throw std::bad_alloc.
void CCXmlPadBuffer(std::string &buffer);

/// Makes an empty document (xmlNewDoc); a null version stands for "1.0". The caller owns it; null without memory.
xmlDocPtr CCXmlCreateDoc(const char *version);

/// Frees a document and all its nodes (xmlFreeDoc). Returns Success, or Failed for null.
Status CCXmlFreeDocPtr(xmlDocPtr document);

/// The owner of a document.
struct CCXmlFreeDocument
{
    void operator()(xmlDocPtr document) const { CCXmlFreeDocPtr(document); }
};
using CCXmlDocumentOwner = std::unique_ptr<_xmlDoc, CCXmlFreeDocument>;

/// The root element (xmlDocGetRootElement), or null, also for a null document.
xmlNodePtr CCXmlGetRootElement(xmlDocPtr document);

/// Makes the free-standing `root` the root element (xmlDocSetRootElement) and returns it; null when either is null.
xmlNodePtr CCXmlSetRootElement(xmlDocPtr document, xmlNodePtr root);

/// The node's own name, which lives as long as the node; null for a null node or one without a name. Text nodes are
/// named "text", comments "comment".
const char *CCXmlGetNodeElementName(xmlNodePtr node);

/// Walks children of every kind in document order: the first child of `parent` for a null `sibling`, otherwise the
/// node behind `sibling`. Null at the end and for a null parent.
xmlNodePtr CCXmlGetNextNodeChild(xmlNodePtr parent, xmlNodePtr sibling);

/// Appends the element `name` with the text `content` (may be null) as the last child of `parent`; without a parent the
/// element stands free until it is made a root. Returns the element, or null when `name` is null or memory runs out.
/// Entity references in `content` are resolved, as xmlNodeSetContent does. xmlNewNode, xmlAddChild.
xmlNodePtr CCXmlAddNode(xmlNodePtr parent, const char *name, const char *content);

/// Serialises the document without indentation (xmlDocDumpMemory) into a zero-terminated block of the C heap, which the
/// caller gives back with free, and stores its length without the terminator. Returns Success, or Missing when the
/// document or `memory` is null or memory runs out.
Status CCXmlDocDumpMemory(xmlDocPtr document, char **memory, std::int32_t *size);

/// Saves the document to a file (as xmlSaveFile does), by way of Platform::ReplacedFile: an earlier one stays whole
/// until the new one is. The children that CCXmlParseXMLfile has left out stand in front of those of the tree again;
/// the root must have got one. Returns Success, Failed when an argument is null or the file cannot be written,
/// NoMemory.
Status CCXmlSave(const char *fileName, xmlDocPtr document, const CCXmlOmitted *omitted = nullptr);

/// Takes a node out of its document and frees it with everything below it (xmlUnlinkNode, xmlFreeNode), for a reader
/// that is done with it: what was just read costs least to free. Null is ignored. Writes no trace lines.
void CCXmlFreeNode(xmlNodePtr node);

/// The value of an attribute (xmlGetProp) as a fresh copy, which the caller gives back with CCXmlFreeValue; null when
/// the node has no such attribute or an argument is null.
char *CCXmlGetAttributeValue(xmlNodePtr node, const char *attributeName);

/// Gives back a value of CCXmlGetAttributeValue (xmlFree).
struct CCXmlFreeValue
{
    void operator()(char *value) const;
};
using CCXmlValueOwner = std::unique_ptr<char, CCXmlFreeValue>;

/// CCXmlGetAttributeValue for readers who must not take an attribute for absent because memory ran out: then it throws
/// std::bad_alloc.
CCXmlValueOwner CCXmlReadAttribute(xmlNodePtr node, const char *attributeName);

/// Creates an attribute or replaces its value (xmlSetProp). Does nothing when an argument is null.
void CCXmlSetAttributeValue(xmlNodePtr node, const char *attributeName, const char *value);

/// CCXmlAddNode and CCXmlSetAttributeValue for texts from outside: the document holds `text` character for character,
/// "&" included. Two surrogates encoded one by one become the character they stand for; what no XML document can hold
/// (ill-formed bytes, control characters but tab and line ends) becomes U+FFFD. Without a parent no element is made.
/// Throws std::bad_alloc when memory runs out.
xmlNodePtr CCXmlAddTextNode(xmlNodePtr parent, const char *name, std::string text);
void CCXmlSetTextAttribute(xmlNodePtr node, const char *attributeName, std::string text);
