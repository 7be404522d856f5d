#include "BiosConfiguration.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "FailureReport.h"
#include "ModuleDataWriter.h"
#include "Platform.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace
{

constexpr const char *kSourceFile = "BiosConfiguration";
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

/// The ending of the report file's name, by output kind; kinds beyond have none.
constexpr std::array kReportSuffixes = {
    "_UI_XML",   // UiXml
    "_UI_XML",   // UiXmlAlternate
    "_LOG_XML",  // LogXml
    "_LOG_XML",  // LogXmlAlternate
    "_LOG_HTML", // LogHtml
    "_LOG_HTML", // LogHtmlAlternate
    "",          // LogHtmlXml
    "",          // LogHtmlXmlAlternate
    "_LOG_JSON", // LogJson
    "_UI_JSON",  // UiJson
};

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

std::string ReportSuffix(OutputKind kind)
{
    const auto index = static_cast<std::size_t>(kind);
    return index < kReportSuffixes.size() ? kReportSuffixes[index] : "";
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
    ModuleDataWriter *writer = nullptr;
    /// The status of the last step that gave one.
    Status status = StatusCode::Success;

    /// Whether the last step succeeded; a failure is recorded.
    bool Passed(const char *traced, const char *reported, std::uint32_t level = TRACE_ERROR,
                std::source_location where = std::source_location::current()) const
    {
        if (status != StatusCode::Success)
            Record(traced, reported, level, where);
        return status == StatusCode::Success;
    }

    void Record(const char *traced, const char *reported, std::uint32_t level = TRACE_ERROR,
                std::source_location where = std::source_location::current()) const
    {
        RecordFailure(trace, level, traced, reported, kGetDataTitle, where);
    }

    /// For a failure whose line has been traced.
    void Report(const char *reported, std::source_location where = std::source_location::current()) const
    {
        ReportFailure(reported, kGetDataTitle, where);
    }
};

Status BiosConfigModule::GetData(const char *name, const OutputKind *kind, std::string *buffer)
{
    FunctionTrace trace(m_debugHandle, kSourceFile, "BiosConfigModule::GetData", "GetData\n");
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
    if (made != StatusCode::Success)
        request.Record("out of memory\n", "Could not Allocate Memory");

    request.status = UnInitialize();
    if (request.status != StatusCode::Success)
    {
        TRACE(trace, TRACE_ERROR, "uninitialise failed with status %d\n", request.status);
        request.Report("Failed to uninitilaise");
    }
    const Status status = made == StatusCode::Success ? request.status : made;
    RETURN_TRACED(trace, status, "returning status %d\n", status);
}

void BiosConfigModule::MakeReport(Request &request, const std::string &name, OutputKind kind)
{
    Platform::TextFileWriter reportFile;
    reportFile.Open(m_toolXmlPath + kReportFolder + name + ReportSuffix(kind));
    const WriterSession session(kind);
    request.writer = session.Get();
    if (!request.writer)
        return request.Record("new failed for pWriter\n", "Could not Allocate Memory");
    if (!StartReport(request) || !FillReport(request))
        return;
    request.writer->CopyDataToBuffer(request.buffer);
    if (reportFile.IsOpen() && !(reportFile.Write(request.buffer) && reportFile.Close()))
        request.Record("failed to write the report file\n", "Failed to write the report file");
}

bool BiosConfigModule::StartReport(Request &request)
{
    request.status = request.writer->Initialize(GetModuleName(), "");
    if (!request.Passed("pWriter->Initialize failed\n", "Failed to initialize"))
        return false;
    request.status = request.writer->AddTab(kTabName, kTabHeader);
    return request.Passed("pWriter->AddTab failed\n", "Failed to Add tab");
}

bool BiosConfigModule::FillReport(Request &request)
{
    if (ReadKnobs(request))
    {
        request.status = PrintDataToVector();
        if (!request.Passed("failed to print data to vector\n", "failed to print data to vector"))
            return false;
        AddGroups(request);
    }
    if (request.status == StatusCode::Failed || request.status == StatusCode::ToolFailed)
    {
        request.writer->AddGroup(kDefaultGroup);
        request.writer->AddRow(kUnavailableRow);
    }
    return true;
}

bool BiosConfigModule::ReadKnobs(Request &request)
{
    request.status = Initialize();
    if (!request.Passed("failed to initilaise\n", "Failed to initialise"))
        return false;
    request.status = readKnob(m_knobs, "");
    return request.Passed("failed to get knob details\n", "Failed to readKnob", TRACE_FAILURE);
}

void BiosConfigModule::AddGroups(Request &request)
{
    for (auto &[name, rows] : m_groups)
    {
        request.status = request.writer->AddGroup(name);
        AddRows(request, rows);
    }
}

void BiosConfigModule::AddRows(Request &request, std::vector<std::string> &rows)
{
    for (std::string &row : rows)
    {
        if (row.empty())
        {
            TRACE(request.trace, TRACE_ERROR, "GetNextItem failed with status %d\n", request.status);
            return request.Report("Failed to Get Next Item");
        }
        // Nobody looks at the rows again: the writer may have them.
        request.status =
            IsGroupName(row) ? request.writer->AddGroup(std::move(row)) : request.writer->AddRow(std::move(row));
        if (request.status != StatusCode::Success)
            return request.trace.Error("Breaking while loop unexpectedly!!\n");
    }
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
    FunctionTrace trace(m_debugHandle, kSourceFile, "BiosConfigModule::IsGroupName", "IsGroupName\n");
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
