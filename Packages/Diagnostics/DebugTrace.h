#pragma once

#include "TraceSource.h"

#include <source_location>

/// Has the compiler compare the arguments of a call with its format, where it can.
#ifdef __GNUC__
#define CHECKED_AS_PRINTF(formatPosition, firstArgument) __attribute__((format(printf, formatPosition, firstArgument)))
#else
#define CHECKED_AS_PRINTF(formatPosition, firstArgument)
#endif

/// Writes one line to the sinks that `handle` selects, if it wants the line: a line break, the fields that traceFormat
/// names, a blank, and the message made from `format` (as printf does; cut to 255 bytes). `sourceFile` is not part of
/// the line. Takes no lock and allocates nothing. Returns Missing for a null handle, else Success, whether or not
/// something was written. A null argument of a "%s" is written as the C library does.
Status DebugTrace(const DebugHandle_t *handle, const char *sourceFile, const char *functionName, std::uint32_t line,
                  std::uint32_t level, const char *format, ...) CHECKED_AS_PRINTF(6, 7);

/// Whether a line of `level` has anywhere to go; what DebugTrace asks first, standing inline at the call.
inline bool TraceWanted(const DebugHandle_t *handle, std::uint32_t level)
{
    return handle &&
           (((handle->traceType & level) != 0 && (handle->outputType & (OUTPUT_CONSOLE | OUTPUT_FILE)) != 0) ||
            handle->callback);
}

/// A fixed trace message and the line of the code that gives it.
struct TraceText
{
    // Implicit, so that a call can pass the text alone.
    constexpr TraceText(const char *message, std::source_location where = std::source_location::current())
        : text(message), line(where.line())
    {
    }

    const char *text;
    std::uint32_t line;
};

/// The trace lines of one call of one function. Write the way out with Done, Fail or LeaveUntraced; a call that is
/// left in any other way (an exception included) gets its exit line from the destructor, with the line number of the
/// entry.
class FunctionTrace
{
public:
    /// Without an entry text: the function writes its lines with TRACE.
    FunctionTrace(const TraceSource &source, const char *functionName)
        : m_handle(source.Handle()), m_sourceFile(source.SourceFile()), m_functionName(functionName), m_left(true)
    {
    }

    /// Writes the entry line; `entry` is also the exit line's text where Done is given none.
    FunctionTrace(const TraceSource &source, const char *functionName, TraceText entry)
        : m_handle(source.Handle()), m_sourceFile(source.SourceFile()), m_functionName(functionName), m_exitText(entry)
    {
        Text(TRACE_ENTRY, entry);
    }

    ~FunctionTrace()
    {
        if (!m_left)
            Text(TRACE_EXIT, m_exitText);
    }

    FunctionTrace(const FunctionTrace &) = delete;
    FunctionTrace &operator=(const FunctionTrace &) = delete;

    bool Wants(std::uint32_t level) const { return TraceWanted(m_handle, level); }
    const DebugHandle_t *Handle() const { return m_handle; }
    const char *SourceFile() const { return m_sourceFile; }
    const char *FunctionName() const { return m_functionName; }

    /// A line with a fixed text that does not leave the function.
    void Text(std::uint32_t level, TraceText message) const
    {
        if (Wants(level))
            DebugTrace(m_handle, m_sourceFile, m_functionName, message.line, level, "%s", message.text);
    }

    void Error(TraceText message) const { Text(TRACE_ERROR, message); }

    /// The exit line, with the entry line's text; nothing when the way out has been written.
    Status Done(Status status, std::source_location where = std::source_location::current())
    {
        return m_left ? status : Leave(status, TRACE_EXIT, TraceText(m_exitText.text, where));
    }

    /// The line of a failure that leaves the function.
    Status Fail(Status status, TraceText message) { return Leave(status, TRACE_FAILURE, message); }

    /// The way out without a line of its own.
    Status LeaveUntraced(Status status)
    {
        m_left = true;
        return status;
    }

private:
    Status Leave(Status status, std::uint32_t level, TraceText message)
    {
        m_left = true;
        Text(level, message);
        return status;
    }

    const DebugHandle_t *m_handle;
    const char *m_sourceFile;
    const char *m_functionName;
    TraceText m_exitText = "\n";
    bool m_left = false;
};

/// A formatted line; its arguments are evaluated only when the line is wanted. (Not a function of the object: without
/// its address passed on, the object of a call that traces nothing takes no memory and no time.)
#define TRACE(trace, level, ...)                                                                                       \
    do                                                                                                                 \
    {                                                                                                                  \
        if ((trace).Wants(level))                                                                                      \
            DebugTrace((trace).Handle(), (trace).SourceFile(), (trace).FunctionName(), __LINE__, (level),              \
                       __VA_ARGS__);                                                                                   \
    } while (false)

/// Leaves the function with `status` and a formatted exit line.
#define RETURN_TRACED(trace, status, ...)                                                                              \
    do                                                                                                                 \
    {                                                                                                                  \
        TRACE(trace, TRACE_EXIT, __VA_ARGS__);                                                                         \
        return (trace).LeaveUntraced(status);                                                                          \
    } while (false)
