#include "DebugConf.h"

#include "Container.h"
#include "ExceptionBarrier.h"
#include "FilesystemPath.h"
#include "FindElement.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace
{

constexpr std::string_view kSectionHeads[] = {"[GLOBAL]", "[PACKAGES]"};
constexpr std::string_view kWhiteSpace = " \t\n\r\v\f";
constexpr std::size_t kLineBufferSize = 256;
constexpr std::size_t kCodeLength = 2;
constexpr const char *kNoMemory = "cannot be kept in memory";

struct Code
{
    std::string_view text;
    /// What the code adds to the codes before it; nothing stands for taking all of them back.
    std::uint32_t bits;
};

constexpr Code kTraceTypeCodes[] = {{"En", TRACE_ENTRY}, {"In", TRACE_INFO}, {"Pa", TRACE_PARAM}, {"Wa", TRACE_WARN},
                                    {"Er", TRACE_ERROR}, {"Ex", TRACE_EXIT}, {"No", 0},           {"Al", TRACE_ALL}};
constexpr Code kOutputTypeCodes[] = {
    {"Co", OUTPUT_CONSOLE}, {"Fi", OUTPUT_FILE}, {"In", OUTPUT_CUSTOM}, {"No", 0}, {"Al", OUTPUT_ALL}};
constexpr Code kTraceFormatCodes[] = {{"Fn", FORMAT_FUNCTION}, {"Ln", FORMAT_LINE}, {"Ti", FORMAT_TIME},
                                      {"Td", FORMAT_TAGS},     {"No", 0},           {"Al", FORMAT_ALL}};
constexpr Code kDebugFlagCodes[] = {{"Sy", FLAG_SYNC_PACKAGE_FILE},   {"Lo", FLAG_LOCKED}, {"Tr", FLAG_THREADED},
                                    {"Lg", FLAG_LOG_TO_PACKAGE_FILE}, {"No", 0},           {"Al", FLAG_ALL}};

/// Sets a field of the record from a key's value. Gives what is wrong with the value, or null.
using FieldSetter = const char *(*)(DebugConf_t &record, std::string_view value);

template <auto Field, const auto &Codes>
const char *SetCodes(DebugConf_t &record, std::string_view value)
{
    std::uint32_t bits = 0;
    for (; !value.empty(); value.remove_prefix(kCodeLength))
    {
        if (value.size() < kCodeLength)
            return "holds a code of one character";
        const auto *const code = std::find_if(std::begin(Codes), std::end(Codes),
                                              [value](const Code &known) { return value.starts_with(known.text); });
        if (code == std::end(Codes))
            return "holds an unknown code";
        bits = code->bits == 0 ? 0 : bits | code->bits;
    }
    record.*Field = bits;
    return nullptr;
}

void CopyCut(std::string_view text, char (&field)[kDebugConfTextSize])
{
    field[text.copy(field, kDebugConfTextSize - 1)] = '\0';
}

const char *SetFileName(DebugConf_t &record, std::string_view value)
{
    CopyCut(value, record.fileName);
    return nullptr;
}

const char *SetSyncFlag(DebugConf_t &record, std::string_view value)
{
    record.syncFlag = value == "Y";
    return nullptr;
}

struct Key
{
    std::string_view name;
    DebugConfKey bit;
    FieldSetter set;
};

constexpr Key kKeys[] = {
    {"TraceType", CONF_TRACE_TYPE, SetCodes<&DebugConf_t::traceType, kTraceTypeCodes>},
    {"OutputType", CONF_OUTPUT_TYPE, SetCodes<&DebugConf_t::outputType, kOutputTypeCodes>},
    {"TraceFormatType", CONF_TRACE_FORMAT_TYPE, SetCodes<&DebugConf_t::traceFormat, kTraceFormatCodes>},
    {"DebugFlagsType", CONF_DEBUG_FLAGS_TYPE, SetCodes<&DebugConf_t::debugFlags, kDebugFlagCodes>},
    {"FileName", CONF_FILE_NAME, SetFileName},
    {"SyncFlag", CONF_SYNC_FLAG, SetSyncFlag},
};

/// Removes all white space from the text in `buffer`, wherever it stands.
std::string_view Squeeze(char *buffer)
{
    char *const end = buffer + std::strlen(buffer);
    char *const newEnd = std::remove_if(
        buffer, end, [](char character) { return kWhiteSpace.find(character) != std::string_view::npos; });
    return {buffer, static_cast<std::size_t>(newEnd - buffer)};
}

bool IsSetting(std::string_view line)
{
    return !line.empty() && line.front() != '#' &&
           std::find(std::begin(kSectionHeads), std::end(kSectionHeads), line) == std::end(kSectionHeads);
}

/// Moves what stands in front of `separator` from `rest` to `field` and drops the separator; false when there is none.
bool TakeField(std::string_view &rest, char separator, std::string_view &field)
{
    const std::size_t length = rest.find(separator);
    if (length == std::string_view::npos)
        return false;
    field = rest.substr(0, length);
    rest.remove_prefix(length + 1);
    return true;
}

std::int32_t CompareNames(const void *first, const void *second)
{
    return std::strncmp(static_cast<const DebugConf_t *>(first)->packageName,
                        static_cast<const DebugConf_t *>(second)->packageName, kDebugConfTextSize);
}

bool IsSameFile(const char *first, const char *second)
{
    std::error_code different;
    return std::strcmp(first, second) == 0 ||
           std::filesystem::equivalent(Platform::ToFilesystemPath(first), Platform::ToFilesystemPath(second),
                                       different);
}

Status MakeRecordList(ContainerHandle_t *&records)
{
    ContainerParams_t params;
    params.name = "DebugConfList";
    params.kind = CONTAINER_LIST;
    params.dataType = DATA_CUSTOM;
    params.compare = CompareNames;
    return InitContainer(&params, records);
}

} // namespace

Status DebugConfiguration::Read()
{
    if (m_state != State::NotRead)
        return m_state == State::Read ? StatusCode::Success : StatusCode::Failed;
    Status status = StatusCode::NoMemory;
    try
    {
        status = ReadFile();
    }
    catch (const std::bad_alloc &)
    {
        Refuse(kNoMemory);
    }
    m_state = status == StatusCode::Success ? State::Read : State::Failed;
    return status;
}

Status DebugConfiguration::ReadFile()
{
    const Platform::StreamOwner stream = Platform::OpenStream(kDebugConfFile, "r");
    if (!stream)
        return StatusCode::Success;
    const Status status = MakeRecordList(m_records);
    if (status != StatusCode::Success)
    {
        Refuse(kNoMemory);
        return status;
    }
    return ReadLines(stream.get());
}

Status DebugConfiguration::ReadLines(std::FILE *stream)
{
    char buffer[kLineBufferSize];
    std::uint32_t line = 0;
    bool continues = false;
    while (std::fgets(buffer, sizeof buffer, stream))
    {
        line += continues ? 0 : 1;
        const bool continued = std::exchange(continues, !std::strchr(buffer, '\n'));
        const bool isMarked = line == 1 && !continued && std::string_view(buffer).starts_with(Platform::kByteOrderMark);
        const Status status = TakeLine(Squeeze(buffer + (isMarked ? Platform::kByteOrderMark.size() : 0)));
        if (status != StatusCode::Success)
        {
            m_fault.line = line;
            m_fault.reason = continued ? "is longer than 255 characters" : m_fault.reason;
            return status;
        }
    }
    return std::ferror(stream) ? Refuse("cannot be read") : StatusCode::Success;
}

Status DebugConfiguration::TakeLine(std::string_view line)
{
    if (!IsSetting(line))
        return StatusCode::Success;
    std::string_view name;
    std::string_view key;
    std::string_view value;
    if (!TakeField(line, ':', name) || !TakeField(line, '<', key) || !TakeField(line, '>', value))
        return Refuse("is not of the form NAME : KEY < VALUE >");
    return TakeSetting(name, key, value);
}

Status DebugConfiguration::TakeSetting(std::string_view name, std::string_view key, std::string_view value)
{
    const auto *const known =
        std::find_if(std::begin(kKeys), std::end(kKeys), [key](const Key &candidate) { return candidate.name == key; });
    if (known == std::end(kKeys))
        return Refuse("holds an unknown key");
    DebugConf_t *record = FindRecord(name);
    const Status status = record ? StatusCode::Success : AddRecord(name, record);
    if (status != StatusCode::Success)
    {
        Refuse(kNoMemory);
        return status;
    }
    const char *const wrong = known->set(*record, value);
    if (wrong)
        return Refuse(wrong);
    record->setMask |= known->bit;
    return StatusCode::Success;
}

Status DebugConfiguration::AddRecord(std::string_view name, DebugConf_t *&record)
{
    auto made = std::make_unique<DebugConf_t>();
    CopyCut(name, made->packageName);
    const Status status = Insert(m_records, made.get());
    if (status == StatusCode::Success)
        record = made.release();
    return status;
}

DebugConf_t *DebugConfiguration::FindRecord(std::string_view name) const
{
    return FindElement<DebugConf_t>(m_records,
                                    [name](const DebugConf_t &record) { return record.packageName == name; });
}

const DebugConf_t *DebugConfiguration::Record(std::uint32_t index) const
{
    void *record = nullptr;
    RetrieveFromIndex(m_records, record, index);
    return static_cast<const DebugConf_t *>(record);
}

Status DebugConfiguration::Apply(DebugHandle_t &handle)
{
    if (m_state != State::Read)
        return StatusCode::Success;
    return WithoutExceptions([&] { return ApplyRecords(handle); });
}

Status DebugConfiguration::ApplyRecords(DebugHandle_t &handle)
{
    DebugConf_t *const package = FindRecord(handle.componentName);
    Status status = package ? ApplyRecord(*package, handle, &DebugHandle_t::packageFile) : StatusCode::Success;
    DebugConf_t *const global = FindRecord(kAllPackages);
    if (status != StatusCode::Success || !global)
        return status;
    status = ApplyRecord(*global, handle, &DebugHandle_t::globalFile);
    if (global->setMask & CONF_SYNC_FLAG)
        handle.syncGlobalFile = global->syncFlag;
    return status;
}

Status DebugConfiguration::ApplyRecord(DebugConf_t &record, DebugHandle_t &handle, std::FILE *DebugHandle_t::*file)
{
    if (record.setMask & CONF_FILE_NAME)
        handle.*file = LogFile(record);
    if ((record.setMask & CONF_FILE_NAME) && !(handle.*file))
        return StatusCode::Failed;
    if (record.setMask & CONF_TRACE_TYPE)
        handle.traceType = record.traceType;
    if (record.setMask & CONF_OUTPUT_TYPE)
        handle.outputType = record.outputType;
    if (record.setMask & CONF_TRACE_FORMAT_TYPE)
        handle.traceFormat = record.traceFormat;
    if (record.setMask & CONF_DEBUG_FLAGS_TYPE)
    {
        for (const FlagField &flag : kFlagFields)
            handle.*flag.field = (record.debugFlags & flag.flag) != 0;
    }
    return StatusCode::Success;
}

/// Records that name the same file, in whichever way, share one stream: two would write over each other's lines.
std::FILE *DebugConfiguration::LogFile(DebugConf_t &record)
{
    const DebugConf_t *const open =
        FindElement<DebugConf_t>(m_records, [&record](const DebugConf_t &other)
                                 { return other.file && IsSameFile(other.fileName, record.fileName); });
    if (open)
        return open->file.get();
    record.file = Platform::OpenStream(record.fileName, "w");
    return record.file.get();
}

void DebugConfiguration::Release()
{
    void *record = nullptr;
    while (Pop(m_records, record) == StatusCode::Success)
        delete static_cast<DebugConf_t *>(record);
    UnInitContainer(m_records);
    m_records = nullptr;
    m_fault = {};
    m_state = State::NotRead;
}

Status DebugConfiguration::Refuse(const char *reason)
{
    m_fault.reason = reason;
    return StatusCode::Failed;
}
