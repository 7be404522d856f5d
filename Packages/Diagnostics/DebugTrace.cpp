#include "DebugTrace.h"

#include "Platform.h"

#include <charconv>
#include <cstdarg>
#include <cstring>
#include <string_view>
#include <system_error>

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

/// One line on its way to the sinks: the header with the fields in front, a blank and the message, put together where
/// they are to stand, so that nothing is copied or measured twice.
class Line
{
public:
    /// The header; it stays empty when the fields do not fit.
    void SetHeader(const DebugHandle_t &handle, std::uint32_t level, const char *functionName, std::uint32_t line)
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
            m_headerLength = 0;
    }

    /// Where the message is to be written, at most kMessageLimit characters with the terminating zero; to be asked for
    /// when the header is complete.
    char *MessageBuffer() { return m_text + m_headerLength + 1; }

    /// Ends the line behind the message that WriteMessage wrote; `length` is what it returned.
    void EndMessage(int length)
    {
        m_text[m_headerLength] = ' ';
        if (length < 0)
            MessageBuffer()[0] = '\0';
        // A zero among the characters ends the message for every print function, so not `length`.
        m_messageLength = std::strlen(Message());
    }

    const char *Message() const { return m_text + m_headerLength + 1; }

    /// The C library's own print functions would only put header and message together, so the line goes to their
    /// streams as it is; a print function of somebody else's gets the format and the two texts.
    void Print(ConsolePrint_t print)
    {
        if (print == kStandardConsolePrint)
            Write(stdout);
        else if (print)
            WithHeaderEnded([&] { print("%s %s", m_text, Message()); });
    }

    void Print(FilePrint_t print, std::FILE *stream, bool sync)
    {
        if (!print || !stream)
            return;
        if (print != kStandardFilePrint)
        {
            WithHeaderEnded([&] { print(stream, "%s %s", m_text, Message()); });
            return;
        }
        Write(stream);
        if (sync)
            std::fflush(stream);
    }

private:
    void Append(std::string_view text)
    {
        m_fits = m_fits && text.size() < kHeaderSize - m_headerLength;
        if (!m_fits)
            return;
        std::memcpy(m_text + m_headerLength, text.data(), text.size());
        m_headerLength += text.size();
    }

    void AppendNumber(std::uint64_t number)
    {
        const auto [end, error] = std::to_chars(m_text + m_headerLength, m_text + kHeaderSize - 1, number);
        m_fits = m_fits && error == std::errc();
        m_headerLength = static_cast<std::size_t>(end - m_text);
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

    void Write(std::FILE *stream) const { std::fwrite(m_text, 1, m_headerLength + 1 + m_messageLength, stream); }

    template <typename Call>
    void WithHeaderEnded(Call call)
    {
        m_text[m_headerLength] = '\0';
        call();
        m_text[m_headerLength] = ' ';
    }

    std::size_t m_headerLength = 0;
    std::size_t m_messageLength = 0;
    bool m_fits = true;
    char m_text[kHeaderSize + kMessageBufferSize];
};

/// What vsnprintf makes of a format whose only conversions are "%s", which most formats are, and of texts that are
/// there: at a fraction of its time. False for everything else.
bool FormatTexts(char *buffer, std::string_view format, std::va_list arguments)
{
    std::size_t length = 0;
    const auto append = [&](std::string_view piece)
    { length += piece.copy(buffer + length, kMessageLimit - 1 - length); };
    for (std::size_t percent = format.find('%'); percent != std::string_view::npos; percent = format.find('%'))
    {
        if (!format.substr(percent).starts_with("%s"))
            return false;
        const char *const text = va_arg(arguments, const char *);
        if (!text)
            return false;
        append(format.substr(0, percent));
        append({text, strnlen(text, kMessageLimit)});
        format.remove_prefix(percent + 2);
    }
    append(format);
    buffer[length] = '\0';
    return true;
}

/// Writes the message and returns what vsnprintf returns, or 0.
int WriteMessage(char *buffer, const char *format, std::va_list arguments)
{
    std::va_list texts;
    va_copy(texts, arguments);
    const bool formatted = FormatTexts(buffer, format, texts);
    va_end(texts);
    return formatted ? 0 : std::vsnprintf(buffer, kMessageLimit, format, arguments);
}

void PrintToSinks(const DebugHandle_t &handle, Line &line)
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

/// Makes the line and hands it out; for a handle that wants it.
void Trace(const DebugHandle_t &handle, const char *functionName, std::uint32_t lineNumber, std::uint32_t level,
           const char *format, std::va_list arguments)
{
    Line line;
    const bool printed = (handle.outputType & (OUTPUT_CONSOLE | OUTPUT_FILE)) != 0 && (handle.traceType & level) != 0;
    if (printed)
        line.SetHeader(handle, level, functionName, lineNumber);
    line.EndMessage(WriteMessage(line.MessageBuffer(), format, arguments));
    const std::uint64_t callbackLevel = level & handle.callbackMask;
    if (handle.callback && callbackLevel != 0)
        handle.callback(static_cast<std::uint32_t>(callbackLevel), line.Message(), kMessageBufferSize);
    if (printed)
        PrintToSinks(handle, line);
}

} // namespace

const ConsolePrint_t kStandardConsolePrint = std::printf;
const FilePrint_t kStandardFilePrint = std::fprintf;

Status DebugTrace(const DebugHandle_t *handle, const char * /*sourceFile*/, const char *functionName,
                  std::uint32_t line, std::uint32_t level, const char *format, ...)
{
    if (!handle)
        return StatusCode::Missing;
    if (!TraceWanted(handle, level))
        return StatusCode::Success;
    std::va_list arguments;
    va_start(arguments, format);
    Trace(*handle, functionName, line, level, format, arguments);
    va_end(arguments);
    return StatusCode::Success;
}
