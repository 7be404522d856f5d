#pragma once

#include "DebugHandle.h"
#include "Platform.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

struct ContainerHandle_t;

/// The file with the trace settings, in the working directory. Docs/Diagnostics.md describes it.
constexpr const char *kDebugConfFile = "debug.conf";

/// The package name that stands for all packages.
constexpr std::string_view kAllPackages = "Global";

/// The keys of debug.conf, as bits of DebugConf_t::setMask.
enum DebugConfKey : std::uint32_t
{
    CONF_TRACE_TYPE = 1,
    CONF_OUTPUT_TYPE = 2,
    CONF_TRACE_FORMAT_TYPE = 4,
    CONF_DEBUG_FLAGS_TYPE = 8,
    CONF_FILE_NAME = 16,
    CONF_SYNC_FLAG = 32
};

/// Size of a record's texts with their terminating zero; longer ones are cut.
constexpr std::size_t kDebugConfTextSize = 64;

/// What debug.conf says of one package. A field is meaningful only when its key's bit is in `setMask`.
struct DebugConf_t
{
    char packageName[kDebugConfTextSize] = {};
    /// The keys that were given, of DebugConfKey.
    std::uint32_t setMask = 0;
    /// Of TraceLevel.
    std::uint32_t traceType = 0;
    /// Of TraceOutput.
    std::uint32_t outputType = 0;
    /// Of TraceFormat.
    std::uint32_t traceFormat = 0;
    /// Of DebugFlag.
    std::uint32_t debugFlags = 0;
    /// Flush the global file after every line; in the record of all packages only.
    bool syncFlag = false;
    /// Open from the first handle that needs it; null when another record opened the same file.
    Platform::StreamOwner file;
    char fileName[kDebugConfTextSize] = {};
};

/// Where and why reading debug.conf stopped.
struct DebugConfFault
{
    /// Counted from 1; 0 when no line is to blame.
    std::uint32_t line = 0;
    /// A constant text that goes on from the place, such as "holds an unknown key"; empty without a fault.
    const char *reason = "";
};

/// The settings of debug.conf, one record per package name. Nothing here throws. Used from one thread at a time.
class DebugConfiguration
{
public:
    constexpr DebugConfiguration() = default;
    ~DebugConfiguration() { Release(); }
    DebugConfiguration(const DebugConfiguration &) = delete;
    DebugConfiguration &operator=(const DebugConfiguration &) = delete;

    /// Reads debug.conf, unless that was tried since the last Release; a missing file has no settings. Returns Success;
    /// Failed for a line that is wrong, for a file that cannot be read to its end and after an earlier failure;
    /// NoMemory; what InitContainer and Insert return. After a failure no setting is applied.
    Status Read();

    /// Where and why Read failed.
    const DebugConfFault &Fault() const { return m_fault; }

    /// Gives the new `handle` the settings of its component and then, over them, those of all packages; opens log files
    /// that are not open yet. Returns Success, also when nothing was read; Failed when a log file cannot be opened;
    /// NoMemory.
    Status Apply(DebugHandle_t &handle);

    /// Closes the log files and forgets everything, so that Read starts afresh.
    void Release();

    /// The record at `index` in the order of the file, or null beyond the last.
    const DebugConf_t *Record(std::uint32_t index) const;

private:
    enum class State
    {
        NotRead,
        Read,
        Failed
    };

    Status ReadFile();
    Status ReadLines(std::FILE *stream);
    Status TakeLine(std::string_view line);
    Status TakeSetting(std::string_view name, std::string_view key, std::string_view value);
    DebugConf_t *FindRecord(std::string_view name) const;
    Status AddRecord(std::string_view name, DebugConf_t *&record);
    Status ApplyRecords(DebugHandle_t &handle);
    Status ApplyRecord(DebugConf_t &record, DebugHandle_t &handle, std::FILE *DebugHandle_t::*file);
    std::FILE *LogFile(DebugConf_t &record);
    Status Refuse(const char *reason);

    State m_state = State::NotRead;
    ContainerHandle_t *m_records = nullptr;
    DebugConfFault m_fault;
};
