#pragma once

#include "TracedWriter.h"
#include "xmlInterface.h"

#include <optional>

/// What the writers of XML documents share: the life of the document.
class ModuleXMLWriter : public TracedWriter
{
protected:
    using TracedWriter::TracedWriter;

    /// Opens a bracket of XML work and makes a new document whose root is `rootName` with the name `moduleName`.
    /// Returns false when there is none.
    bool StartDocument(const char *rootName, std::string moduleName);

    /// The serialised document (CCXmlDocDumpMemory). The document stays as it is. NoMemory, with `buffer` unchanged,
    /// when it cannot be serialised.
    Status DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer) final;

    /// Frees the document and closes the bracket, the latter also without a document.
    Status DoUnInitialize(FunctionTrace &trace) final;

    /// Sets the writer's own nodes to null.
    virtual void ForgetNodes() = 0;

    /// An element that is taken out of its document again where it cannot be filled.
    struct FreeNode
    {
        void operator()(xmlNodePtr node) const { CCXmlFreeNode(node); }
    };
    using NewElement = std::unique_ptr<_xmlNode, FreeNode>;

    /// A new last child of `parent`; null without one, since an element that stands free would belong to nobody. Throws
    /// std::bad_alloc when memory runs out.
    static xmlNodePtr AddElement(xmlNodePtr parent, const char *element);
    /// The same with the attribute "Name".
    static xmlNodePtr AddNamedElement(xmlNodePtr parent, const char *element, std::string name);

    CCXmlDocumentOwner m_pDoc;
    // Belongs to the document, as do the nodes of the writers.
    xmlNodePtr m_pRootNode = nullptr;

private:
    void ForgetDocument();

    std::optional<CCXmlBracket> m_bracket;
};
