#pragma once

#include "DebugTrace.h"
#include "ErrorFile.h"

#include <source_location>
#include <string>

/// The build date as the error file shows it, in quotation marks.
inline constexpr const char *kBuildDate = "\"" __DATE__ "\"";

/// Adds an entry with the message `reported` and the title `title` to the error file; it names the calling line.
inline void ReportFailure(const char *reported, const char *title,
                          std::source_location where = std::source_location::current())
{
    ReportError(reported, title, where.file_name(), std::to_string(where.line()).c_str(), kBuildDate);
}

/// Records a failure of the module frame in both places: the line `traced` at `level`, and ReportFailure.
inline void RecordFailure(const FunctionTrace &trace, std::uint32_t level, const char *traced, const char *reported,
                          const char *title, std::source_location where = std::source_location::current())
{
    trace.Text(level, TraceText(traced, where));
    ReportFailure(reported, title, where);
}
