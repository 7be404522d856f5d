#include "BiosConfiguration.h"

#include "ExceptionBarrier.h"
#include "FailureReport.h"
#include "Platform.h"
#include "ToolProgram.h"
#include "XMLReaderLib.h"

#include <memory>
#include <utility>

std::vector<std::string> capabilityNames;
std::vector<std::string> capabilityDescriptions;

namespace
{

constexpr const char *kModuleName = "BIOS Options";
constexpr const char *kErrorFile = "Error.xml";
constexpr const char *kToolPathParameter = "toolxmlpath";
constexpr const char *kInitModuleTitle = "BiosConfigModule - InitModule";

/// Appends one record per capability; NoMemory when one cannot be had, with the earlier ones in place.
Status AppendCaps(std::vector<Cap *> &caps)
{
    return WithoutExceptions(
        [&]
        {
            for (std::size_t position = 0; position < capabilityNames.size(); ++position)
            {
                auto cap = std::make_unique<Cap>();
                cap->names.push_back(capabilityNames[position]);
                cap->description = capabilityDescriptions[position];
                caps.push_back(cap.get());
                static_cast<void>(cap.release());
            }
            return StatusCode::Success;
        });
}

} // namespace

BaseModule *CreateBiosConfigModule()
{
    BaseModule *module = nullptr;
    WithoutExceptions(
        [&module]
        {
            module = new BiosConfigModule;
            return StatusCode::Success;
        });
    return module;
}

void DestroyBiosConfigModule(BaseModule *module)
{
    delete module;
}

BiosConfigModule::BiosConfigModule()
{
    // On Windows every load and unload would cost the process some of its few thread-local slots.
    Platform::StayLoaded();
    m_debugHandle.Open();
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::BiosConfigModule", "BiosConfigModule\n");
    trace.Done(StatusCode::Success);
}

BiosConfigModule::~BiosConfigModule()
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::~BiosConfigModule", "~BiosConfigModule\n");
    m_groups.clear();
    trace.Done(StatusCode::Success);
}

Status BiosConfigModule::InitModule(std::vector<Cap *> &caps, ParameterMap params)
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::InitModule", "InitModule\n");
    const auto fail = [&trace](Status status, const char *traced, const char *reported,
                               std::source_location where = std::source_location::current())
    {
        RecordFailure(trace, TRACE_EXIT, traced, reported, kInitModuleTitle, where);
        return trace.LeaveUntraced(status);
    };

    const auto toolPath = params.find(kToolPathParameter);
    m_toolXmlPath = toolPath == params.end() ? std::string() : std::move(toolPath->second);
    if (InitErrorFile(m_toolXmlPath.c_str(), kErrorFile) != StatusCode::Success)
        trace.Error("Failed to Initialize Error File\n");
    const Status status = WithoutExceptions([this] { return XMLReaderLib::InitializeXMLPath(m_toolXmlPath); });
    if (status != StatusCode::Success)
        return fail(status, "InitializeXMLPath failed\n", "Failed to Initialize XML Path");
    if (XMLReaderLib::GetCapabilityList(kModuleName, &capabilityNames, &capabilityDescriptions) != StatusCode::Success)
        return fail(StatusCode::Failed, "Failed to read data from Capability List\n",
                    "Failed to read data from Capability List");
    if (AppendCaps(caps) != StatusCode::Success)
        return fail(StatusCode::NoMemory, "new failed for Cap\n", "Could not Allocate Memory");
    RETURN_TRACED(trace, StatusCode::Success, "returning status %d\n", StatusCode::Success);
}

Status BiosConfigModule::UnInitModule()
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::UnInitModule", "UnInitModule\n");
    return trace.Done(StatusCode::Success);
}

std::string BiosConfigModule::GetModuleName()
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::GetModuleName", "GetModuleName\n");
    trace.Done(StatusCode::Success);
    return kModuleName;
}

Status BiosConfigModule::Initialize()
{
    m_itemIndex = 0;
    m_knobs.Clear();
    return WithoutExceptions(
        []
        {
            std::string extra;
            return biosConfigurationLibInit("BIOS", extra);
        });
}

Status BiosConfigModule::UnInitialize()
{
    m_knobs.Clear();
    m_groups.clear();
    m_itemIndex = 0;
    return StatusCode::Success;
}

Status BiosConfigModule::GetItemByName(std::string name)
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::GetItemByName", "\n");
    if (name.empty())
        return trace.LeaveUntraced(StatusCode::NotFound);
    RETURN_TRACED(trace, StatusCode::Success, "returning %d\n", StatusCode::Success);
}

Status BiosConfigModule::GetNextItem()
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::GetNextItem", "\n");
    ++m_itemIndex;
    RETURN_TRACED(trace, StatusCode::Success, "returning %d\n", StatusCode::Success);
}
