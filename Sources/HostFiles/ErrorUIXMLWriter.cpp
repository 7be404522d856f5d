#include "ErrorUIXMLWriter.h"

#include "ReplacedFile.h"
#include "SanitizeText.h"
#include "TracedBarrier.h"

#include <cerrno>
#include <initializer_list>
#include <new>
#include <utility>

namespace
{

/// Another process's turn takes milliseconds; one that takes this long is stopped or dead.
constexpr std::uint32_t kLongestWait = 10'000;

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

/// Puts the bytes of a damaged file beside it, unless an earlier one's are there already.
bool KeepDamaged(const std::string &fileName)
{
    const std::string kept = Platform::LinkTarget(fileName) + ".damaged";
    if (Platform::OpenStream(kept, "rb"))
        return true;
    const Platform::StreamOwner damaged = Platform::OpenStream(fileName, "rb");
    std::string bytes;
    if (!damaged || !Platform::ReadBytes(damaged.get(), bytes))
        return false;
    if (bytes.empty())
        return true;
    Platform::ReplacedFile copy(kept);
    return copy.Open() && std::fwrite(bytes.data(), 1, bytes.size(), copy.Stream()) == bytes.size() && copy.Commit();
}

} // namespace

ErrorUIXMLWriter::ErrorUIXMLWriter()
{
    m_debugHandle.Open();
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::ErrorUIXMLWriter", "\n");
    trace.Done(StatusCode::Success);
}

ErrorUIXMLWriter::~ErrorUIXMLWriter()
{
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::~ErrorUIXMLWriter", "\n");
    trace.Done(StatusCode::Success);
}

Status ErrorUIXMLWriter::Initialize(std::string toolName, std::string fileName)
{
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::Initialize", "\n");
    if (toolName.empty())
        return trace.Fail(StatusCode::NotFound, "toolName is empty\n");
    if (fileName.empty())
        return trace.Fail(StatusCode::NotFound, "fileName is empty\n");
    m_bracket.emplace();
    const Status status = WithoutExceptions(trace, [&] { return OpenDocument(std::move(toolName), fileName, trace); });
    if (status != StatusCode::Success)
    {
        ForgetDocument();
        m_bracket.reset();
    }
    return status;
}

/// Takes the document of a file that is there and sound. Success also where a new document is right.
Status ErrorUIXMLWriter::TakeDocument(const std::string &fileName, FunctionTrace &trace)
{
    errno = 0;
    if (Platform::OpenStream(fileName, "rb"))
        GetRootNodeFromExistingXML(fileName);
    else
        m_reading = errno == ENOENT || errno == ENOTDIR ? CCXmlReading::Read : CCXmlReading::Unreadable;
    // Whatever is in the file must not be lost.
    if (m_reading == CCXmlReading::NoMemory)
        return trace.Fail(StatusCode::NoMemory, "out of memory\n");
    if (m_reading == CCXmlReading::Unreadable)
        return trace.Fail(StatusCode::Failed, "the file is there and cannot be read\n");
    if (m_reading == CCXmlReading::NotWellFormed && !KeepDamaged(fileName))
        return trace.Fail(StatusCode::Failed, "the damaged file cannot be kept\n");
    return StatusCode::Success;
}

Status ErrorUIXMLWriter::OpenDocument(std::string toolName, const std::string &fileName, FunctionTrace &trace)
{
    if (!m_lock.emplace(Platform::LinkTarget(fileName), kLongestWait))
        return trace.Fail(StatusCode::Failed, "another process has not let go of the file\n");
    const Status taken = TakeDocument(fileName, trace);
    if (taken != StatusCode::Success)
        return taken;
    if (!m_pDoc)
        m_pDoc.reset(CCXmlCreateDoc(nullptr));
    if (!m_pDoc)
        return trace.Fail(StatusCode::NoMemory, "CCXmlCreateDoc failed\n");
    if (!m_pRootNode)
    {
        m_pRootNode = CCXmlSetRootElement(m_pDoc.get(), CCXmlAddNode(nullptr, "Tool", nullptr));
        CCXmlSetTextAttribute(m_pRootNode, "Name", std::move(toolName));
    }
    m_pErrorNode = m_pRootNode ? CCXmlAddNode(m_pRootNode, "Error", nullptr) : nullptr;
    return trace.Done(StatusCode::Success);
}

void ErrorUIXMLWriter::ForgetDocument()
{
    m_lock.reset();
    m_pDoc.reset();
    m_pRootNode = nullptr;
    m_pErrorNode = nullptr;
}

void ErrorUIXMLWriter::GetRootNodeFromExistingXML(std::string fileName)
{
    const FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::GetRootNodeFromExistingXML");
    if (fileName.empty())
    {
        trace.Text(TRACE_FAILURE, "fileName is empty\n");
        return;
    }
    m_pDoc.reset(CCXmlParseXMLfile(fileName.c_str(), &m_reading, &m_earlierEntries));
    if (!m_pDoc)
    {
        TRACE(trace, TRACE_FAILURE, "Failed to XML file [%s]\n", fileName.c_str());
        return;
    }
    m_pRootNode = CCXmlGetRootElement(m_pDoc.get());
    if (!m_pRootNode)
        TRACE(trace, TRACE_FAILURE, "Failed to root node from XML file [%s]\n", fileName.c_str());
}

Status ErrorUIXMLWriter::AddErrorDetails(std::string message, std::string title, std::string timeStamp,
                                         std::string sourceFile, std::string line, std::string date)
{
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::AddErrorDetails", "\n");
    if (message.empty() || title.empty() || timeStamp.empty())
        return trace.Fail(StatusCode::NotFound, "empty parameter(s)\n");
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    return WithoutExceptions(
        trace,
        [&]
        {
            AddMessage(m_pErrorNode,
                       {{"Name", SanitizeText(std::move(message))}, {"Description", SanitizeText(std::move(title))}});
            AddMessage(m_pErrorNode, {{"Name", "Time Stamp"}, {"Description", std::move(timeStamp)}});
            AddMessage(m_pErrorNode,
                       {{"Name", "Error"}, {"Filename", std::move(sourceFile)}, {"LineNumber", std::move(line)}});
            AddMessage(m_pErrorNode, {{"Date", std::move(date)}});
            return trace.Done(StatusCode::Success);
        });
}

Status ErrorUIXMLWriter::SaveDataFile(std::string fileName)
{
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::SaveDataFile", "\n");
    if (fileName.empty())
        return trace.Fail(StatusCode::NotFound, "fileName is empty\n");
    if (!m_pDoc)
        return trace.Fail(StatusCode::Missing, "NULL Pointer:m_pDoc\n");
    const Status status = CCXmlSave(fileName.c_str(), m_pDoc.get(), &m_earlierEntries);
    if (status != StatusCode::Success)
        TRACE(trace, TRACE_ERROR, "CCXmlSave failed with %d\n", status);
    return trace.Done(status);
}

Status ErrorUIXMLWriter::UnInitialize()
{
    FunctionTrace trace(m_debugHandle, "ErrorUIXMLWriter::UnInitialize", "\n");
    if (!m_pDoc)
    {
        trace.Fail(StatusCode::Success, "NULL Pointer:m_pDoc\n");
        m_bracket.reset();
        return StatusCode::Success;
    }
    ForgetDocument();
    m_bracket.reset();
    return trace.Done(StatusCode::Success);
}
