// debug.conf: read whole or refused with a line; what was read, written down and read again, is the same. No log file
// is opened: the bytes would name it.

#include "DebugConf.h"
#include "Fuzzing.h"

#include <algorithm>
#include <vector>

namespace
{

struct Names
{
    std::uint32_t bit;
    const char *text;
};

template <std::size_t Count>
std::string Codes(std::uint32_t bits, const Names (&names)[Count])
{
    std::string text;
    for (const Names &name : names)
        text += (bits & name.bit) != 0 ? name.text : "";
    return text;
}

constexpr Names kLevels[] = {{TRACE_ENTRY, "En"}, {TRACE_INFO, "In"},  {TRACE_PARAM, "Pa"},
                             {TRACE_WARN, "Wa"},  {TRACE_ERROR, "Er"}, {TRACE_EXIT, "Ex"}};
constexpr Names kOutputs[] = {{OUTPUT_CONSOLE, "Co"}, {OUTPUT_FILE, "Fi"}, {OUTPUT_CUSTOM, "In"}};
constexpr Names kFormats[] = {{FORMAT_FUNCTION, "Fn"}, {FORMAT_LINE, "Ln"}, {FORMAT_TIME, "Ti"}, {FORMAT_TAGS, "Td"}};
constexpr Names kFlags[] = {
    {FLAG_SYNC_PACKAGE_FILE, "Sy"}, {FLAG_LOCKED, "Lo"}, {FLAG_THREADED, "Tr"}, {FLAG_LOG_TO_PACKAGE_FILE, "Lg"}};

/// The lines that set what `record` holds.
std::string Lines(const DebugConf_t &record)
{
    const struct
    {
        DebugConfKey key;
        const char *name;
        std::string value;
    } settings[] = {
        {CONF_TRACE_TYPE, "TraceType", Codes(record.traceType, kLevels)},
        {CONF_OUTPUT_TYPE, "OutputType", Codes(record.outputType, kOutputs)},
        {CONF_TRACE_FORMAT_TYPE, "TraceFormatType", Codes(record.traceFormat, kFormats)},
        {CONF_DEBUG_FLAGS_TYPE, "DebugFlagsType", Codes(record.debugFlags, kFlags)},
        {CONF_FILE_NAME, "FileName", record.fileName},
        {CONF_SYNC_FLAG, "SyncFlag", record.syncFlag ? "Y" : "N"},
    };
    std::string lines;
    for (const auto &[key, name, value] : settings)
    {
        if ((record.setMask & key) != 0)
            lines += std::string(record.packageName) + " : " + name + " < " + value + " >\n";
    }
    return lines;
}

bool HasCutName(std::string_view lines)
{
    for (std::size_t end = lines.find(" : "); end != std::string_view::npos; end = lines.find(" : "))
    {
        if (end >= kDebugConfTextSize - 1)
            return true;
        lines.remove_prefix(lines.find('\n') + 1);
    }
    return false;
}

/// Reads debug.conf; gives what it sets, as lines. False when it is refused.
bool Read(std::string &lines, DebugConfFault &fault)
{
    DebugConfiguration configuration;
    const Status status = configuration.Read();
    fault = configuration.Fault();
    Fuzzing::Require((status == StatusCode::Success) == (*fault.reason == '\0'), "a refusal has a reason");
    for (std::uint32_t index = 0; const DebugConf_t *const record = configuration.Record(index); ++index)
    {
        lines += Lines(*record);
    }
    return status == StatusCode::Success;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string file = Fuzzing::Directory() + kDebugConfFile;
    const std::string_view text = Fuzzing::Text(bytes, size);
    Fuzzing::WriteFile(file, text);
    std::string lines;
    DebugConfFault fault;
    if (!Read(lines, fault))
    {
        Fuzzing::Require(fault.line >= 1 && fault.line <= Fuzzing::Count(text, "\n") + 1, "a refusal names a line");
        return 0;
    }
    // A name that was cut may be that of several records. The comment is for a name that begins with a byte-order mark.
    if (HasCutName(lines))
        return 0;
    Fuzzing::WriteFile(file, "#\n" + lines);
    std::string again;
    Fuzzing::Require(Read(again, fault), "what was read can be read again");
    Fuzzing::Require(again == lines, "settings come back");
    return 0;
}
