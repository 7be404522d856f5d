#include "ErrorUIXMLWriter.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "ModuleDataWriter.h"
#include "Platform.h"
#include "SingletonManager.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <initializer_list>
#include <new>
#include <utility>

namespace
{

constexpr const char *kSourceFile = "ErrorUIXMLWriter";
constexpr const char *kToolName = "Tarnwell";

std::string errorFileDirectory;
std::string errorFileName;

struct Attribute
{
    const char *name;
    std::string value;
};

void AddMessage(xmlNodePtr parent, std::initializer_list<Attribute> attributes)
{
    const xmlNodePtr message = parent ? CCXmlAddNode(parent, "Message", nullptr) : nullptr;
    if (!message)
        throw std::bad_alloc();
    for (const Attribute &attribute : attributes)
        CCXmlSetTextAttribute(message, attribute.name, attribute.value);
}

/// The local time as asctime writes it, without the line feed; empty when the system cannot tell it.
std::string FormatTimeStamp(std::time_t time)
{
    constexpr std::array kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr int kFirstYear = 1900;
    std::tm local = {};
    if (!Platform::LocalTime(time, local))
        return {};
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %d", kDays.at(static_cast<std::size_t>(local.tm_wday)),
                  kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec, kFirstYear + local.tm_year);
    return text;
}

/// One entry from opening the document to saving it; the caller holds the shared mutex.
Status AddEntryToFile(std::time_t time, const char *path, const char *message, const char *title,
                      const char *sourceFile, const char *line, const char *date)
{
    ErrorUIXMLWriter writer;
    Status status = WithoutExceptions([&] { return writer.Initialize(kToolName, path); });
    if (status != StatusCode::Success)
        return status;
    status = WithoutExceptions(
        [&] { return writer.AddErrorDetails(message, title, FormatTimeStamp(time), sourceFile, line, date); });
    if (status == StatusCode::Success)
        status = writer.SaveDataFile(path);
    writer.UnInitialize();
    return status;
}

} // namespace

ErrorUIXMLWriter::ErrorUIXMLWriter()
{
    InitDebugHandle("ErrorUIXMLWriter", &m_debugHandle);
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::ErrorUIXMLWriter", "\n");
    trace.Done(StatusCode::Success);
}

ErrorUIXMLWriter::~ErrorUIXMLWriter()
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::~ErrorUIXMLWriter", "\n");
    trace.Done(StatusCode::Success);
    UnInitDebugHandle(m_debugHandle);
}

Status ErrorUIXMLWriter::Initialize(std::string toolName, std::string fileName)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::Initialize", "\n");
    if (toolName.empty())
        return trace.Fail(StatusCode::NotFound, "toolName is empty\n");
    if (fileName.empty())
        return trace.Fail(StatusCode::NotFound, "fileName is empty\n");
    CCInitializeXMLParser();
    const Status status = WithoutExceptions(trace, [&] { return OpenDocument(std::move(toolName), fileName, trace); });
    if (status != StatusCode::Success)
    {
        ForgetDocument();
        CCDeInitializeXMLParser();
    }
    return status;
}

Status ErrorUIXMLWriter::OpenDocument(std::string toolName, const std::string &fileName, FunctionTrace &trace)
{
    errno = 0;
    if (Platform::OpenStream(fileName, "rb"))
        GetRootNodeFromExistingXML(fileName);
    else if (errno == EACCES)
        return trace.Fail(StatusCode::Failed, "the file is there and cannot be read\n"); // its entries must not be lost
    if (!m_pDoc)
        m_pDoc = CCXmlCreateDoc(nullptr);
    if (!m_pDoc)
        return trace.Fail(StatusCode::Failed, "CCXmlCreateDoc failed\n");
    if (!m_pRootNode)
    {
        m_pRootNode = CCXmlSetRootElement(m_pDoc, CCXmlAddNode(nullptr, "Tool", nullptr));
        CCXmlSetTextAttribute(m_pRootNode, "Name", std::move(toolName));
    }
    m_pErrorNode = m_pRootNode ? CCXmlAddNode(m_pRootNode, "Error", nullptr) : nullptr;
    return trace.Done(StatusCode::Success);
}

void ErrorUIXMLWriter::ForgetDocument()
{
    if (m_pDoc)
        CCXmlFreeDocPtr(m_pDoc);
    m_pDoc = nullptr;
    m_pRootNode = nullptr;
    m_pErrorNode = nullptr;
}

void ErrorUIXMLWriter::GetRootNodeFromExistingXML(std::string fileName)
{
    const FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::GetRootNodeFromExistingXML");
    if (fileName.empty())
    {
        trace.Text(TRACE_FAILURE, "fileName is empty\n");
        return;
    }
    m_pDoc = CCXmlParseXMLfile(fileName.c_str());
    if (!m_pDoc)
    {
        TRACE(trace, TRACE_FAILURE, "Failed to XML file [%s]\n", fileName.c_str());
        return;
    }
    m_pRootNode = CCXmlGetRootElement(m_pDoc);
    if (!m_pRootNode)
        TRACE(trace, TRACE_FAILURE, "Failed to root node from XML file [%s]\n", fileName.c_str());
}

Status ErrorUIXMLWriter::AddErrorDetails(std::string message, std::string title, std::string timeStamp,
                                         std::string sourceFile, std::string line, std::string date)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::AddErrorDetails", "\n");
    if (message.empty() || title.empty() || timeStamp.empty())
        return trace.Fail(StatusCode::NotFound, "empty parameter(s)\n");
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        trace,
        [&]
        {
            AddMessage(m_pErrorNode, {{"Name", ModuleDataWriter::SanitizeText(std::move(message))},
                                      {"Description", ModuleDataWriter::SanitizeText(std::move(title))}});
            AddMessage(m_pErrorNode, {{"Name", "Time Stamp"}, {"Description", std::move(timeStamp)}});
            AddMessage(m_pErrorNode,
                       {{"Name", "Error"}, {"Filename", std::move(sourceFile)}, {"LineNumber", std::move(line)}});
            AddMessage(m_pErrorNode, {{"Date", std::move(date)}});
            return trace.Done(StatusCode::Success);
        });
}

Status ErrorUIXMLWriter::SaveDataFile(std::string fileName)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::SaveDataFile", "\n");
    if (fileName.empty())
        return trace.Fail(StatusCode::NotFound, "fileName is empty\n");
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    const Status status = CCXmlSave(fileName.c_str(), m_pDoc);
    if (status != StatusCode::Success)
        TRACE(trace, TRACE_ERROR, "CCXmlSave failed with %d\n", status);
    return trace.Done(status);
}

Status ErrorUIXMLWriter::UnInitialize()
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "ErrorUIXMLWriter::UnInitialize", "\n");
    if (!m_pDoc)
    {
        trace.Fail(StatusCode::Success, "NULL Pointer:m_pDoc\n");
        CCDeInitializeXMLParser();
        return StatusCode::Success;
    }
    ForgetDocument();
    CCDeInitializeXMLParser();
    return trace.Done(StatusCode::Success);
}

Status InitErrorFile(const char *directory, const char *fileName)
{
    if (!directory || !fileName)
        return StatusCode::Failed;
    if (!errorFileDirectory.empty() && !errorFileName.empty())
        return StatusCode::Success;
    return WithoutExceptions(
        [&]
        {
            errorFileDirectory = directory;
            errorFileName = fileName;
            return StatusCode::Success;
        });
}

Status ReportError(const char *message, const char *title, const char *sourceFile, const char *line, const char *date)
{
    if (errorFileDirectory.empty() || errorFileName.empty())
        return StatusCode::Success;
    if (!message || !title || !sourceFile || !line || !date)
        return StatusCode::NotFound;
    return WithoutExceptions(
        [&]
        {
            const std::string path = errorFileDirectory + errorFileName;
            return WriteErrorEntry(path.c_str(), message, title, sourceFile, line, date);
        });
}

Status WriteErrorEntry(const char *path, const char *message, const char *title, const char *sourceFile,
                       const char *line, const char *date)
{
    // The time of the report, not of its turn at the mutex.
    const std::time_t now = std::time(nullptr);
    const SingletonInstance *const shared = getSingletonInstance();
    if (!path || !message || !title || !sourceFile || !line || !date || !shared)
        return StatusCode::NotFound;
    const Platform::MutexLock lock(shared->errorFileMutex);
    if (!lock)
        return StatusCode::Missing;
    return WithoutExceptions([&] { return AddEntryToFile(now, path, message, title, sourceFile, line, date); });
}
