#include "DebugTrace.h"

#include "Platform.h"

#include <charconv>
#include <cstdarg>
#include <cstring>
#include <string_view>

namespace
{

constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kMessageBufferSize = 281;
constexpr std::size_t kMessageLimit = 256;
constexpr std::uint32_t kLargestLine = 999999;

struct LevelTag
{
    std::uint32_t level;
    std::string_view text;
};

constexpr LevelTag kTagsInPrintOrder[] = {{TRACE_INFO, " Info "}, {TRACE_PARAM, " PARAM "},
                                          {TRACE_WARN, " WARN "}, {TRACE_ERROR, " **ERROR** "},
                                          {TRACE_ENTRY, " --> "}, {TRACE_EXIT, " <-- "}};

/// The fields in front of the message. Empty when they do not fit.
class Header
{
public:
    Header(const DebugHandle_t &handle, std::uint32_t level, const char *functionName, std::uint32_t line)
    {
        Append("\n");
        if (handle.traceFormat & FORMAT_TAGS)
            AppendTags(level & handle.traceType);
        if (handle.traceFormat & FORMAT_FUNCTION)
        {
            Append(" Fn:");
            Append(functionName ? functionName : "(null)");
        }
        if (handle.traceFormat & FORMAT_LINE)
            AppendLine(line);
        if (handle.traceFormat & FORMAT_TIME)
            AppendTime();
        if (!m_fits)
            m_length = 0;
        m_text[m_length] = '\0';
    }

    const char *Text() const { return m_text; }
    std::size_t Length() const { return m_length; }

private:
    void Append(std::string_view text)
    {
        m_fits = m_fits && text.size() < kHeaderSize - m_length;
        if (!m_fits)
            return;
        std::memcpy(m_text + m_length, text.data(), text.size());
        m_length += text.size();
    }

    void AppendNumber(std::uint64_t number)
    {
        char digits[20];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        Append({digits, static_cast<std::size_t>(end - digits)});
    }

    void AppendTags(std::uint64_t levels)
    {
        for (const LevelTag &tag : kTagsInPrintOrder)
        {
            if (levels & tag.level)
                Append(tag.text);
        }
    }

    void AppendLine(std::uint32_t line)
    {
        Append(" Ln:");
        if (line <= kLargestLine)
            AppendNumber(line);
    }

    void AppendTime()
    {
        Append(" TS:");
        std::uint64_t milliseconds = 0;
        if (Platform::MonotonicMilliseconds(milliseconds))
            AppendNumber(milliseconds);
        else
            Append("NA");
    }

    char m_text[kHeaderSize];
    std::size_t m_length = 0;
    bool m_fits = true;
};

/// One line on its way to the sinks. The C library's own print functions would only put the two texts together, so the
/// line goes to their streams as it is; a print function of somebody else's gets the format and the texts.
class Line
{
public:
    Line(const Header &header, const char *message) : m_header(header.Text()), m_message(message)
    {
        Append(header.Text(), header.Length());
        Append(" ", 1);
        Append(message, std::strlen(message));
    }

    void Print(ConsolePrint_t print) const
    {
        if (print == static_cast<ConsolePrint_t>(std::printf))
            std::fwrite(m_text, 1, m_length, stdout);
        else if (print)
            print("%s %s", m_header, m_message);
    }

    void Print(FilePrint_t print, std::FILE *stream, bool sync) const
    {
        if (!print || !stream)
            return;
        if (print != static_cast<FilePrint_t>(std::fprintf))
        {
            print(stream, "%s %s", m_header, m_message);
            return;
        }
        std::fwrite(m_text, 1, m_length, stream);
        if (sync)
            std::fflush(stream);
    }

private:
    void Append(const char *text, std::size_t length)
    {
        std::memcpy(m_text + m_length, text, length);
        m_length += length;
    }

    const char *m_header;
    const char *m_message;
    std::size_t m_length = 0;
    char m_text[kHeaderSize + kMessageLimit];
};

void PrintToSinks(const DebugHandle_t &handle, const Line &line)
{
    if (handle.outputType & OUTPUT_CONSOLE)
        line.Print(handle.consolePrint);
    if (handle.outputType & OUTPUT_FILE)
    {
        if (handle.logToPackageFile)
            line.Print(handle.filePrint, handle.packageFile, handle.syncPackageFile);
        line.Print(handle.filePrint, handle.globalFile, handle.syncGlobalFile);
    }
    if (handle.outputType & OUTPUT_CUSTOM)
        line.Print(handle.customPrint);
}

Status TraceArguments(const DebugHandle_t *handle, const char * /*sourceFile*/, const char *functionName,
                      std::uint32_t line, std::uint32_t level, const char *format, va_list arguments)
{
    if (!handle)
        return StatusCode::Missing;
    if (!TraceWanted(handle, level))
        return StatusCode::Success;

    char message[kMessageBufferSize];
    if (std::vsnprintf(message, kMessageLimit, format, arguments) < 0)
        message[0] = '\0';
    const std::uint64_t callbackLevel = level & handle->callbackMask;
    if (handle->callback && callbackLevel != 0)
        handle->callback(static_cast<std::uint32_t>(callbackLevel), message, kMessageBufferSize);
    if ((handle->outputType & (OUTPUT_CONSOLE | OUTPUT_FILE)) == 0 || (handle->traceType & level) == 0)
        return StatusCode::Success;

    const Header header(*handle, level, functionName, line);
    PrintToSinks(*handle, Line(header, message));
    return StatusCode::Success;
}

} // namespace

Status DebugTrace(const DebugHandle_t *handle, const char *sourceFile, const char *functionName, std::uint32_t line,
                  std::uint32_t level, const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const Status status = TraceArguments(handle, sourceFile, functionName, line, level, format, arguments);
    va_end(arguments);
    return status;
}

void FunctionTrace::Line(std::uint32_t line, std::uint32_t level, const char *format, ...) const
{
    std::va_list arguments;
    va_start(arguments, format);
    TraceArguments(m_handle, m_sourceFile, m_functionName, line, level, format, arguments);
    va_end(arguments);
}
