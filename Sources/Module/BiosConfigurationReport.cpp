#include "BiosConfiguration.h"
#include "FailureReport.h"
#include "KnobDump.h"
#include "Platform.h"
#include "ReportFormat.h"
#include "TracedBarrier.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace
{

constexpr const char *kGetDataTitle = "BiosConfigModule - GetData";
constexpr const char *kIsGroupNameTitle = "BiosConfigModule - IsGroupName";
constexpr const char *kAllOptions = "all";
constexpr const char *kReportFolder = "ModuleData\\";
constexpr const char *kTabName = "Bios Options";
constexpr const char *kTabHeader = "Name,Value,Prompt,Description";
constexpr const char *kDefaultGroup = "Bios Options";
constexpr const char *kNoDescription = "Not Available";
constexpr const char *kGroupMarker = "#GROUPNAME";
constexpr std::string_view kCellSeparator = ModuleDataWriter::kCellSeparator;
constexpr const char *kUnavailableRow = "\"Bios Options\", \"FENRIK is not enabled on this platform\", "
                                        "\"Check whether FENRIK is supported \", "
                                        "\"If Supported Enable FENRIK in BIOS to see the data\"";

/// Reads a hexadecimal number as std::stoul does with base 16, into 32 bits; 0 where there is none or it is too large.
std::uint32_t HexNumber(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if ((text.starts_with("0x") || text.starts_with("0X")) && text.size() > 2)
        text.remove_prefix(2);
    std::uint32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number, 16).ec != std::errc())
        return 0;
    return negative ? 0U - number : number;
}

/// What a knob's current value is called: the text of the first option with that value, or the value itself when the
/// knob has no options.
std::string_view ValueText(const KnobDetails &knob)
{
    if (knob.options.empty())
        return knob.CurrentVal;
    const std::uint32_t current = HexNumber(knob.CurrentVal);
    for (const auto &[text, value] : knob.options)
    {
        if (HexNumber(value) == current)
            return text;
    }
    return {};
}

std::string RowText(const KnobDetails &knob)
{
    const std::string_view value = ValueText(knob);
    const std::string_view description = knob.description.empty() ? kNoDescription : std::string_view(knob.description);
    std::string row;
    row.reserve(knob.name.size() + value.size() + knob.prompt.size() + description.size() + 4 * kCellSeparator.size());
    row.append(1, '"').append(knob.name).append(kCellSeparator).append(value).append(kCellSeparator);
    row.append(knob.prompt).append(kCellSeparator).append(description).append(1, '"');
    return row;
}

/// The group of a setup page: its first part, where it has one in front of a "/".
std::string_view GroupName(std::string_view setupPage)
{
    const std::size_t slash = setupPage.find('/');
    return slash == 0 || slash == std::string_view::npos ? kDefaultGroup : setupPage.substr(0, slash);
}

/// A writer that is uninitialised before it is destroyed, whatever happens in between.
class WriterSession
{
public:
    explicit WriterSession(OutputKind kind) : m_writer(CreateModuleDataWriter(kind)) {}
    ~WriterSession()
    {
        if (m_writer)
            m_writer->UnInitialize();
    }
    WriterSession(const WriterSession &) = delete;
    WriterSession &operator=(const WriterSession &) = delete;

    ModuleDataWriter *Get() const { return m_writer.get(); }

private:
    ModuleDataWriterOwner m_writer;
};

} // namespace

/// What one GetData call works with.
struct BiosConfigModule::Request
{
    const FunctionTrace &trace;
    std::string &buffer;

    /// Whether a step succeeded; a failure is recorded.
    bool Passed(Status status, const char *traced, const char *reported, std::uint32_t level = TRACE_ERROR,
                std::source_location where = std::source_location::current()) const
    {
        if (status != StatusCode::Success)
            RecordFailure(trace, level, traced, reported, kGetDataTitle, where);
        return status == StatusCode::Success;
    }
};

Status BiosConfigModule::GetData(const char *name, const OutputKind *kind, std::string *buffer)
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::GetData", "GetData\n");
    const bool all = name && std::string_view(name) == kAllOptions;
    if (!name || !kind || !buffer || (all && capabilityNames.empty()))
    {
        RecordFailure(trace, TRACE_FAILURE, "NULL pointer(s)\n", "Null Dereferencing", kGetDataTitle);
        return trace.LeaveUntraced(StatusCode::NotFound);
    }

    const Request request = {trace, *buffer};
    const Status made = WithoutExceptions(
        [&]
        {
            MakeReport(request, all ? capabilityNames.front() : name, *kind);
            return StatusCode::Success;
        });
    request.Passed(made, ExceptionText(made),
                   made == StatusCode::NoMemory ? "Could not Allocate Memory" : "Unexpected exception");

    const Status ended = UnInitialize();
    if (ended != StatusCode::Success)
    {
        TRACE(trace, TRACE_ERROR, "uninitialise failed with status %d\n", ended);
        ReportFailure("Failed to uninitilaise", kGetDataTitle);
    }
    const Status status = made == StatusCode::Success ? ended : made;
    RETURN_TRACED(trace, status, "returning status %d\n", status);
}

void BiosConfigModule::MakeReport(const Request &request, const std::string &name, OutputKind kind)
{
    Platform::TextFileWriter reportFile;
    reportFile.Open(m_toolXmlPath + kReportFolder + name + ReportFileEnding(kind));
    const WriterSession session(kind);
    ModuleDataWriter *const writer = session.Get();
    if (!writer)
        return RecordFailure(request.trace, TRACE_ERROR, "new failed for pWriter\n", "Could not Allocate Memory",
                             kGetDataTitle);
    if (!StartReport(request, *writer) || !WriteReport(request, *writer))
        return;
    writer->CopyDataToBuffer(request.buffer);
    if (reportFile.IsOpen() && !(reportFile.Write(request.buffer) && reportFile.Close()))
        RecordFailure(request.trace, TRACE_ERROR, "failed to write the report file\n",
                      "Failed to write the report file", kGetDataTitle);
}

bool BiosConfigModule::StartReport(const Request &request, ModuleDataWriter &writer)
{
    return request.Passed(writer.Initialize(GetModuleName(), ""), "pWriter->Initialize failed\n",
                          "Failed to initialize") &&
           request.Passed(writer.AddTab(kTabName, kTabHeader), "pWriter->AddTab failed\n", "Failed to Add tab");
}

/// Returns false when there is no report to hand out.
bool BiosConfigModule::WriteReport(const Request &request, ModuleDataWriter &writer)
{
    Status status = ReadKnobs(request);
    if (status == StatusCode::Success)
    {
        if (!request.Passed(PrintDataToVector(), "failed to print data to vector\n", "failed to print data to vector"))
            return false;
        status = AddGroups(request, writer);
    }
    // The status of the last step decides, whichever it was: a writer that could not take the last row for one of these
    // two reasons gets the row as well, so that the reader of a report cut short finds a hint in it.
    if (status == StatusCode::Failed || status == StatusCode::ToolFailed)
    {
        writer.AddGroup(kDefaultGroup);
        writer.AddRow(kUnavailableRow);
    }
    return true;
}

Status BiosConfigModule::ReadKnobs(const Request &request)
{
    Status status = Initialize();
    if (!request.Passed(status, "failed to initilaise\n", "Failed to initialise"))
        return status;
    status = readKnob(m_knobs, "");
    request.Passed(status, "failed to get knob details\n", "Failed to readKnob", TRACE_FAILURE);
    return status;
}

/// The status of the last group.
Status BiosConfigModule::AddGroups(const Request &request, ModuleDataWriter &writer)
{
    Status status = StatusCode::Success;
    for (auto &[name, rows] : m_groups)
        status = AddGroup(request, writer, name, rows);
    return status;
}

/// The status of the last row that the writer was given.
Status BiosConfigModule::AddGroup(const Request &request, ModuleDataWriter &writer, const std::string &name,
                                  std::vector<std::string> &rows)
{
    Status status = writer.AddGroup(name);
    for (std::string &row : rows)
    {
        if (row.empty())
        {
            TRACE(request.trace, TRACE_ERROR, "GetNextItem failed with status %d\n", status);
            ReportFailure("Failed to Get Next Item", kGetDataTitle);
            return status;
        }
        // Nobody looks at the rows again: the writer may have them.
        status = IsGroupName(row) ? writer.AddGroup(std::move(row)) : writer.AddRow(std::move(row));
        if (status != StatusCode::Success)
        {
            request.trace.Error("Breaking while loop unexpectedly!!\n");
            return status;
        }
    }
    return status;
}

Status BiosConfigModule::PrintDataToVector()
{
    return WithoutExceptions(
        [this]
        {
            auto group = m_groups.end();
            for (const KnobDetails &knob : m_knobs)
            {
                const std::string_view name = GroupName(knob.SetupPgPtr);
                if (group == m_groups.end() || group->first != name)
                    group = m_groups.find(name);
                if (group == m_groups.end())
                    group = m_groups.try_emplace(std::string(name)).first;
                group->second.push_back(RowText(knob));
            }
            return StatusCode::Success;
        });
}

bool BiosConfigModule::IsGroupName(std::string &row)
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::IsGroupName", "IsGroupName\n");
    if (row.empty())
    {
        RecordFailure(trace, TRACE_ERROR, "NULL pointer(s)\n", "Null Dereferencing", kIsGroupNameTitle);
        trace.LeaveUntraced(StatusCode::NotFound);
        return false;
    }
    const std::size_t marker = row.find(kGroupMarker);
    if (marker != std::string::npos)
    {
        row.resize(marker);
        row.erase(0, 1);
    }
    trace.Done(StatusCode::Success);
    return marker != std::string::npos;
}
