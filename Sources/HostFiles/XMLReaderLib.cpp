#include "XMLReaderLib.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "LowerAscii.h"
#include "Platform.h"
#include "xmlInterface.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace XMLReaderLib
{

namespace
{

constexpr const char *kCapabilityFile = "CapsList.json";

std::string xmlPath;
TraceSource readerTrace("XMLReaderLib", "XMLReaderLib");

using Json = nlohmann::json;

struct CapabilityLists
{
    std::vector<std::string> names;
    std::vector<std::string> descriptions;
};

/// UnInitialize on every way out.
struct ReaderBracket
{
    ReaderBracket() { Initialize(); }
    ~ReaderBracket() { UnInitialize(); }
    ReaderBracket(const ReaderBracket &) = delete;
    ReaderBracket &operator=(const ReaderBracket &) = delete;
};

/// Follows `key` from `value` on: Success, NotFound when it is missing (or null), Failed when `value` is no object.
Status Descend(const Json *&value, const char *key)
{
    if (value->is_null())
        return StatusCode::NotFound;
    if (!value->is_object())
        return StatusCode::Failed;
    const auto member = value->find(key);
    if (member == value->end())
        return StatusCode::NotFound;
    value = &*member;
    return StatusCode::Success;
}

/// Appends one capability; false when the element is not of the right shape.
bool AddCapability(const Json &element, CapabilityLists &lists)
{
    if (!element.is_object())
        return false;
    const auto name = element.find("Name");
    const auto description = element.find("Description");
    if (name == element.end() || !name->is_string() || description == element.end() || !description->is_string())
        return false;
    lists.names.push_back(LowerAscii(name->get<std::string>()));
    lists.descriptions.push_back(description->get<std::string>());
    return true;
}

Status ParseCapabilities(const std::string &text, const char *moduleName, CapabilityLists &lists)
{
    const Json document = Json::parse(text, nullptr, false);
    if (document.is_discarded())
        return StatusCode::Failed;
    const Json *value = &document;
    for (const char *key : {"Tarnwell", "CapabilityList", moduleName})
    {
        const Status status = Descend(value, key);
        if (status != StatusCode::Success)
            return status;
    }
    const bool wellFormed = (value->is_array() || value->is_object()) &&
                            std::all_of(value->begin(), value->end(),
                                        [&lists](const Json &element) { return AddCapability(element, lists); });
    return wellFormed ? StatusCode::Success : StatusCode::Failed;
}

} // namespace

Status Initialize()
{
    readerTrace.Open();
    const FunctionTrace trace(readerTrace, "XMLReaderLib::Initialize");
    trace.Text(TRACE_ENTRY, "\n");
    CCInitializeXMLParser();
    TRACE(trace, TRACE_EXIT, "returning status %d\n", StatusCode::Success);
    return StatusCode::Success;
}

Status UnInitialize()
{
    const FunctionTrace trace(readerTrace, "XMLReaderLib::UnInitialize");
    trace.Text(TRACE_ENTRY, "\n");
    CCDeInitializeXMLParser();
    TRACE(trace, TRACE_EXIT, "returning status = %d\n", StatusCode::Success);
    readerTrace.Close();
    return StatusCode::Success;
}

Status InitializeXMLPath(std::string directory)
{
    if (directory.empty())
        return StatusCode::Failed;
    xmlPath = std::move(directory);
    return StatusCode::Success;
}

Status GetCapabilityList(const char *moduleName, std::vector<std::string> *names,
                         std::vector<std::string> *descriptions)
{
    const ReaderBracket bracket;
    const FunctionTrace trace(readerTrace, "XMLReaderLib::GetCapabilityList");
    trace.Text(TRACE_ENTRY, "\n");
    if (!moduleName || !names || !descriptions)
    {
        trace.Text(TRACE_FAILURE, "NULL pointer(s)\n");
        return StatusCode::NotFound;
    }
    names->clear();
    descriptions->clear();
    return WithoutExceptions(
        [&]
        {
            std::string text;
            ReadWholeFile(xmlPath + kCapabilityFile, &text);
            CapabilityLists lists;
            const Status status = ParseCapabilities(text, moduleName, lists);
            if (status != StatusCode::Success)
                return status;
            *names = std::move(lists.names);
            *descriptions = std::move(lists.descriptions);
            return status;
        });
}

Status ReadWholeFile(std::string path, std::string *text)
{
    return WithoutExceptions(
        [&]
        {
            if (!text || !Platform::ReadTextFile(path, *text) || text->empty())
                return StatusCode::Failed;
            return StatusCode::Success;
        });
}

} // namespace XMLReaderLib
