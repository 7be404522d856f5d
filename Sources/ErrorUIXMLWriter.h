#pragma once

#include "DebugHandle.h"
#include "StatusCode.h"
#include "xmlInterface.h"

#include <string>

class FunctionTrace;

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

    xmlDocPtr m_pDoc = nullptr;
    // Both belong to the document.
    xmlNodePtr m_pRootNode = nullptr;
    xmlNodePtr m_pErrorNode = nullptr;
    DebugHandle_t *m_debugHandle = nullptr;
};

/// Says where the error file lies: `directory` with its final separator, and `fileName`. The first setting that has
/// both stays until the module is unloaded. Returns Success, Failed when a pointer is null, NoMemory.
Status InitErrorFile(const char *directory, const char *fileName);

/// Adds an entry to the error file, under the process-wide mutex of the host. `line` is decimal text, `date` the build
/// date. Returns Success, also when no error file is set and nothing was written; NotFound when an argument is null or
/// message or title is empty; NoMemory; otherwise what WriteErrorEntry returns.
Status ReportError(const char *message, const char *title, const char *sourceFile, const char *line, const char *date);

/// Adds an entry to the error file at `path`: reads or creates it, appends, saves. Returns Success; NotFound for a null
/// argument, an empty message or title, and without the host's shared object; Missing when the mutex cannot be had;
/// NoMemory; Failed when the document cannot be created or saved.
Status WriteErrorEntry(const char *path, const char *message, const char *title, const char *sourceFile,
                       const char *line, const char *date);
