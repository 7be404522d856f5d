#pragma once

#include "DebugTrace.h"
#include "StatusCode.h"
#include "xmlInterface.h"

#include <optional>
#include <string>

/// Adds one entry to an error document; lives for one report only. Texts are UTF-8. Nothing throws.
class ErrorUIXMLWriter
{
public:
    ErrorUIXMLWriter();
    ~ErrorUIXMLWriter();
    ErrorUIXMLWriter(const ErrorUIXMLWriter &) = delete;
    ErrorUIXMLWriter &operator=(const ErrorUIXMLWriter &) = delete;

    /// Takes the document from the file, or makes a new one with the root "Tool" named `toolName` when there is none
    /// that can be parsed, and appends an empty entry. Returns Success, NotFound for an empty argument, Failed when no
    /// document can be created, NoMemory.
    Status Initialize(std::string toolName, std::string fileName);

    /// Takes the document from the file, if it can be parsed.
    void GetRootNodeFromExistingXML(std::string fileName);

    /// Fills the entry. Returns Success, NotFound when message, title or time stamp is empty, Missing without a
    /// document, NoMemory.
    Status AddErrorDetails(std::string message, std::string title, std::string timeStamp, std::string sourceFile,
                           std::string line, std::string date);

    /// Saves the document. Returns Success, NotFound for an empty name, Missing without a document, Failed when the
    /// file cannot be written.
    Status SaveDataFile(std::string fileName);

    /// Frees the document. Always Success.
    Status UnInitialize();

private:
    Status OpenDocument(std::string toolName, const std::string &fileName, FunctionTrace &trace);
    void ForgetDocument();

    TraceSource m_debugHandle{"ErrorUIXMLWriter", "ErrorUIXMLWriter"};
    CCXmlDocumentOwner m_pDoc;
    // Both belong to the document.
    xmlNodePtr m_pRootNode = nullptr;
    xmlNodePtr m_pErrorNode = nullptr;
    std::optional<CCXmlBracket> m_bracket;
};
