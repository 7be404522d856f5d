#pragma once

#include "DebugTrace.h"
#include "Platform.h"
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

    /// Takes the document from the file and appends an empty entry. Where there is no file, or the whole of it was read
    /// and is no document, makes a new one with the root "Tool" named `toolName`; the bytes of the damaged file are
    /// then in one beside it, with ".damaged" behind its name, unless there is such a file already. Keeps other
    /// processes away from the file until UnInitialize. Returns Success; NotFound for an empty argument; Failed, with
    /// the file as it was, when it is there and cannot be read, when what is damaged cannot be kept, when another
    /// process has not let go of it within ten seconds, or when no document can be created; NoMemory.
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
    Status TakeDocument(const std::string &fileName, FunctionTrace &trace);
    void ForgetDocument();

    TraceSource m_debugHandle{"ErrorUIXMLWriter", "ErrorUIXMLWriter"};
    CCXmlDocumentOwner m_pDoc;
    // Both belong to the document.
    xmlNodePtr m_pRootNode = nullptr;
    xmlNodePtr m_pErrorNode = nullptr;
    CCXmlReading m_reading = CCXmlReading::Read;
    CCXmlOmitted m_earlierEntries;
    std::optional<CCXmlBracket> m_bracket;
    std::optional<Platform::FileLock> m_lock;
};
