#pragma once

#include "DebugTrace.h"
#include "ErrorFile.h"

#include <source_location>
#include <string>

/// The build date as the error file shows it, in quotation marks.
inline constexpr const char *kBuildDate = "\"" __DATE__ "\"";

/// Adds an entry with the message `reported` and the title `title` to the error file; it names the calling line. Tries
/// twice where memory does not suffice. Returns what ReportError does.
inline Status ReportFailure(const char *reported, const char *title,
                            std::source_location where = std::source_location::current())
{
    const std::string line = std::to_string(where.line()); // short enough to need no memory
    Status status = ReportError(reported, title, where.file_name(), line.c_str(), kBuildDate);
    if (status == StatusCode::NoMemory)
        status = ReportError(reported, title, where.file_name(), line.c_str(), kBuildDate);
    return status;
}

/// Records a failure of the module frame in both places: the line `traced` at `level`, and ReportFailure, whose status
/// it returns.
inline Status RecordFailure(const FunctionTrace &trace, std::uint32_t level, const char *traced, const char *reported,
                            const char *title, std::source_location where = std::source_location::current())
{
    trace.Text(level, TraceText(traced, where));
    return ReportFailure(reported, title, where);
}
