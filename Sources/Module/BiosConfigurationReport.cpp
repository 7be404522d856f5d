#include "BiosConfiguration.h"
#include "FailureReport.h"
#include "KnobDump.h"
#include "Platform.h"
#include "ReportFormat.h"
#include "TracedBarrier.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <new>
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

/// What one GetData call works with, and what it finds out on its way.
struct BiosConfigModule::Request
{
    const FunctionTrace &trace;
    std::string &buffer;
    /// The line of the dump where it is damaged, or 0.
    std::int32_t damagedLine = 0;
    bool rowsAreMissing = false;
    bool isRefusedAsNotUtf8 = false;
    /// There was no memory for a writer, for its document, or to tell of something.
    bool lackedMemory = false;

    /// Records a failure; the status of the request then does not hide one that could not be recorded.
    void Record(const char *traced, const char *reported, std::uint32_t level = TRACE_ERROR,
                std::source_location where = std::source_location::current())
    {
        lackedMemory |= RecordFailure(trace, level, traced, reported, kGetDataTitle, where) == StatusCode::NoMemory;
    }

    /// Whether a step succeeded; a failure is recorded.
    bool Passed(Status status, const char *traced, const char *reported, std::uint32_t level = TRACE_ERROR,
                std::source_location where = std::source_location::current())
    {
        if (status != StatusCode::Success)
            Record(traced, reported, level, where);
        return status == StatusCode::Success;
    }

    /// Records what is wrong with a report that was made all the same.
    void RecordFlaws()
    {
        if (rowsAreMissing)
            Record("rows are missing\n", "The report is not complete: rows are missing");
        if (isRefusedAsNotUtf8)
            Record("the report holds text that is not UTF-8\n", "The report holds text that is not UTF-8");
        if (damagedLine == 0)
            return;
        char message[128];
        std::snprintf(message, sizeof message,
                      "The dump of the options is damaged; options may be missing or in the wrong group (line %d)",
                      static_cast<int>(damagedLine));
        Record("the dump is damaged\n", message);
    }
};

namespace
{

/// Want of memory must not look like a report with less in it.
Status RequireMemory(Status status)
{
    if (status == StatusCode::NoMemory)
        throw std::bad_alloc();
    return status;
}

} // namespace

Status BiosConfigModule::GetData(const char *name, const OutputKind *kind, std::string *buffer)
{
    FunctionTrace trace(m_debugHandle, "BiosConfigModule::GetData", "GetData\n");
    const bool all = name && std::string_view(name) == kAllOptions;
    if (!name || !kind || !buffer || (all && capabilityNames.empty()))
    {
        RecordFailure(trace, TRACE_FAILURE, "NULL pointer(s)\n", "Null Dereferencing", kGetDataTitle);
        return trace.LeaveUntraced(StatusCode::NotFound);
    }

    Request request = {trace, *buffer};
    const Status made = WithoutExceptions(
        [&]
        {
            MakeReport(request, all ? capabilityNames.front() : name, *kind);
            return StatusCode::Success;
        });
    // First, because what is to be recorded needs memory, too.
    const Status ended = UnInitialize();
    request.Passed(made, ExceptionText(made),
                   made == StatusCode::NoMemory ? "Could not Allocate Memory" : "Unexpected exception");
    request.RecordFlaws();
    if (ended != StatusCode::Success)
    {
        TRACE(trace, TRACE_ERROR, "uninitialise failed with status %d\n", ended);
        ReportFailure("Failed to uninitilaise", kGetDataTitle);
    }
    const Status done = made == StatusCode::Success ? ended : made;
    const Status status = request.lackedMemory ? StatusCode::NoMemory : done;
    RETURN_TRACED(trace, status, "returning status %d\n", status);
}

void BiosConfigModule::MakeReport(Request &request, const std::string &name, OutputKind kind)
{
    Platform::TextFileWriter reportFile;
    errno = 0;
    // Without the folder there is none; a file that the system does not let the module write is missed.
    if (!reportFile.Open(m_toolXmlPath + kReportFolder + name + ReportFileEnding(kind)) && errno != ENOENT)
        request.Record("failed to open the report file\n", "Failed to write the report file");
    const WriterSession session(kind);
    ModuleDataWriter *const writer = session.Get();
    if (!writer)
    {
        request.lackedMemory = static_cast<std::size_t>(kind) < kOutputKindCount; // or else it is a kind without one
        return request.Record("new failed for pWriter\n", "Could not Allocate Memory");
    }
    if (!StartReport(request, *writer) || !WriteReport(request, *writer))
        return;
    RequireMemory(writer->CopyDataToBuffer(request.buffer));
    request.isRefusedAsNotUtf8 = writer->IsRefusedAsNotUtf8();
    if (reportFile.IsOpen() && !(reportFile.Write(request.buffer) && reportFile.Close()))
        request.Record("failed to write the report file\n", "Failed to write the report file");
}

bool BiosConfigModule::StartReport(Request &request, ModuleDataWriter &writer)
{
    // There is a name, so it is the document that could not be had.
    request.lackedMemory = !request.Passed(RequireMemory(writer.Initialize(GetModuleName(), "")),
                                           "pWriter->Initialize failed\n", "Failed to initialize");
    return !request.lackedMemory && request.Passed(RequireMemory(writer.AddTab(kTabName, kTabHeader)),
                                                   "pWriter->AddTab failed\n", "Failed to Add tab");
}

/// Returns false when there is no report to hand out.
bool BiosConfigModule::WriteReport(Request &request, ModuleDataWriter &writer)
{
    Status status = RequireMemory(ReadKnobs(request));
    if (status == StatusCode::Success)
    {
        if (!request.Passed(RequireMemory(PrintDataToVector()), "failed to print data to vector\n",
                            "failed to print data to vector"))
            return false;
        status = AddGroups(request, writer);
    }
    // The status of the last step decides, whichever it was: a writer that could not take the last row for one of these
    // two reasons gets the row as well, so that the reader of a report cut short finds a hint in it.
    if (status == StatusCode::Failed || status == StatusCode::ToolFailed)
    {
        RequireMemory(writer.AddGroup(kDefaultGroup));
        RequireMemory(writer.AddRow(kUnavailableRow));
    }
    return true;
}

Status BiosConfigModule::ReadKnobs(Request &request)
{
    Status status = Initialize();
    if (!request.Passed(status, "failed to initilaise\n", "Failed to initialise"))
        return status;
    status = readKnob(m_knobs, "", &request.damagedLine);
    request.Passed(status, "failed to get knob details\n", "Failed to readKnob", TRACE_FAILURE);
    return status;
}

/// The status of the last group.
Status BiosConfigModule::AddGroups(Request &request, ModuleDataWriter &writer)
{
    Status status = StatusCode::Success;
    for (auto &[name, rows] : m_groups)
        status = AddGroup(request, writer, name, rows);
    return status;
}

/// The status of the last row that the writer was given.
Status BiosConfigModule::AddGroup(Request &request, ModuleDataWriter &writer, const std::string &name,
                                  std::vector<std::string> &rows)
{
    Status status = RequireMemory(writer.AddGroup(name));
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
            request.rowsAreMissing = true;
            return RequireMemory(status);
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
