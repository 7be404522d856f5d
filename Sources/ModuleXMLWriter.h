#pragma once

#include "ModuleDataWriter.h"
#include "WriterOperation.h"
#include "xmlInterface.h"

/// What the writers of XML documents share: the life of the document.
class ModuleXMLWriter : public ModuleDataWriter
{
protected:
    /// Opens a bracket of XML work and makes a new document whose root is `rootName` with the name `moduleName`.
    /// Returns false, with `operation` ended as Failed, when there is none.
    bool StartDocument(WriterOperation &operation, const char *rootName, std::string moduleName);

    /// CopyDataToBuffer: the serialised document (CCXmlDocDumpMemory). The document stays as it is. Also Success, with
    /// `buffer` unchanged, when it cannot be serialised.
    Status CopyDocument(WriterOperation &&operation, std::string &buffer) const;

    /// UnInitialize: frees the document and closes the bracket, the latter also without a document.
    Status GiveUpDocument(WriterOperation &&operation);

    /// Sets the writer's own nodes to null.
    virtual void ForgetNodes() = 0;

    /// A new last child of `parent`; null without one, since an element that stands free would belong to nobody.
    static xmlNodePtr AddElement(xmlNodePtr parent, const char *element);
    /// The same with the attribute "Name".
    static xmlNodePtr AddNamedElement(xmlNodePtr parent, const char *element, std::string name);

    // The nodes belong to the document.
    xmlDocPtr m_pDoc = nullptr;
    xmlNodePtr m_pRootNode = nullptr;

private:
    void ForgetDocument();
};
