#include "DebugTrace.h"

#include "TraceLog.h"
#include "TracedBarrier.h"

#include <cstdarg>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace
{

using TestSupport::TraceLog;

/// What every sink was given, with the sink's name in front.
std::string written;

void Print(const char *sink, const char *format, std::va_list texts)
{
    char line[512];
    std::vsnprintf(line, sizeof line, format, texts);
    written.append(sink).append(line);
}

int PrintToConsole(const char *format, ...)
{
    std::va_list texts;
    va_start(texts, format);
    Print("console:", format, texts);
    va_end(texts);
    return -1;
}

int PrintToFile(std::FILE *stream, const char *format, ...)
{
    std::va_list texts;
    va_start(texts, format);
    Print(stream == stdout ? "global:" : "package:", format, texts);
    va_end(texts);
    return -1;
}

Status CallBack(std::uint32_t level, const char *message, std::uint32_t size)
{
    written.append("callback:").append(message);
    EXPECT_EQ(level, TRACE_WARN);
    EXPECT_EQ(size, 281U);
    return StatusCode::Failed;
}

/// A handle with a sink of every kind, whose callback gets warnings.
DebugHandle_t MakeHandle(std::uint64_t traceType, std::uint64_t outputType, std::uint32_t format)
{
    DebugHandle_t handle;
    handle.traceType = traceType;
    handle.outputType = outputType;
    handle.traceFormat = format;
    handle.callback = CallBack;
    handle.callbackMask = TRACE_WARN;
    handle.consolePrint = handle.customPrint = PrintToConsole;
    handle.filePrint = PrintToFile;
    handle.globalFile = stdout;
    handle.packageFile = stderr;
    written.clear();
    return handle;
}

TEST(DebugTrace, WritesItsFieldsToTheSinksThatAreSelected)
{
    const std::string fits(94, 'f'), tooLong(95, 'f'), tooLongWithLine(89, 'f');
    const struct
    {
        std::uint64_t traceType = TRACE_ALL, outputType = OUTPUT_CONSOLE;
        std::uint32_t format = 0, level = TRACE_ERROR, line = 1;
        std::string function = "F", message = "x", lines;
    } cases[] = {
        {.format = FORMAT_ALL & ~FORMAT_TIME,
         .level = TRACE_ENTRY,
         .message = "x\n",
         .lines = "console:\n -->  Fn:F Ln:1 x\n"},
        {.format = FORMAT_TAGS,
         .level = TRACE_ALL,
         .lines = "callback:xconsole:\n Info  PARAM  WARN  **ERROR**  -->  <--  x"},
        {.traceType = TRACE_ERROR, .format = FORMAT_TAGS, .level = TRACE_FAILURE, .lines = "console:\n **ERROR**  x"},
        {.traceType = TRACE_EXIT, .lines = ""},
        {.format = FORMAT_LINE, .line = 999999, .lines = "console:\n Ln:999999 x"},
        {.format = FORMAT_LINE, .line = 1234567, .lines = "console:\n Ln: x"},
        {.format = FORMAT_FUNCTION, .function = fits, .lines = "console:\n Fn:" + fits + " x"},
        {.format = FORMAT_FUNCTION, .function = tooLong, .lines = "console: x"},
        {.format = FORMAT_FUNCTION | FORMAT_LINE, .line = 120, .function = tooLongWithLine, .lines = "console: x"},
        {.message = std::string(300, 'm'), .lines = "console:\n " + std::string(255, 'm')},
        {.outputType = OUTPUT_CONSOLE | OUTPUT_CUSTOM, .lines = "console:\n xconsole:\n x"},
        {.outputType = OUTPUT_ALL, .lines = "console:\n xpackage:\n xglobal:\n xconsole:\n x"},
        {.outputType = OUTPUT_CUSTOM, .level = TRACE_WARN | TRACE_EXIT, .lines = "callback:x"},
        {.traceType = TRACE_ALL & ~TRACE_WARN, .outputType = OUTPUT_ALL, .level = TRACE_WARN, .lines = "callback:x"},
    };
    for (const auto &row : cases)
    {
        const DebugHandle_t handle = MakeHandle(row.traceType, row.outputType, row.format);
        EXPECT_EQ(DebugTrace(&handle, "file", row.function.c_str(), row.line, row.level, "%s", row.message.c_str()),
                  StatusCode::Success);
        EXPECT_EQ(written, row.lines);
    }
}

TEST(DebugTrace, NeedsAHandleButNoNameAndNoMessage)
{
    EXPECT_EQ(DebugTrace(nullptr, "file", "function", 1, TRACE_ERROR, "text"), StatusCode::Missing);
    const DebugHandle_t handle = MakeHandle(TRACE_ALL, OUTPUT_CONSOLE, FORMAT_FUNCTION | FORMAT_TIME);
    DebugTrace(&handle, "file", nullptr, 1, TRACE_ERROR, "%s", "");
    EXPECT_TRUE(written.starts_with("console:\n Fn:(null) TS:")) << written;
    EXPECT_EQ(written.find_first_not_of("0123456789", 23), written.size() - 1) << written;
}

TEST(DebugTrace, PrintFunctionsOfTheLibraryAndOfOthersGetTheSameLine)
{
    DebugHandle_t handle = MakeHandle(TRACE_ALL, OUTPUT_ALL, 0);
    handle.filePrint = DebugHandle_t().filePrint;
    handle.packageFile = nullptr;
    testing::internal::CaptureStdout();
    DebugTrace(&handle, "file", "F", 1, TRACE_ERROR, "x%cy", 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n x");
    EXPECT_EQ(written, "console:\n xconsole:\n x");
}

TEST(FunctionTrace, TellsWhatAnExceptionWas)
{
    const TraceLog log("BarrierTest", TRACE_ERROR);
    TraceSource source("BarrierTest", "file");
    source.Open();
    const auto end = [&source](const std::function<void()> &work)
    {
        FunctionTrace trace(source, "F", "F\n");
        return WithoutExceptions(trace,
                                 [&]
                                 {
                                     work();
                                     return trace.Done(StatusCode::Success);
                                 });
    };
    EXPECT_EQ(end([] { throw std::bad_alloc(); }), StatusCode::NoMemory);
    EXPECT_EQ(end([] { std::string().resize(std::string::npos); }), StatusCode::NoMemory);
    EXPECT_EQ(end([] { throw std::runtime_error("x"); }), StatusCode::Failed);
    const std::string line = " **ERROR**  <--  Fn:F ";
    EXPECT_EQ(TraceLog::Take(), (std::vector<std::string>{line + "out of memory\n", line + "out of memory\n",
                                                          line + "unexpected exception\n"}));
}

TEST(FunctionTrace, WritesTheWayOutOnceAndEvaluatesNothingWhenDisabled)
{
    TraceSource source("FunctionTraceTest", "file");
    source.Open();
    DebugHandle_t *handle = nullptr;
    ASSERT_EQ(InitDebugHandle("FunctionTraceTest", &handle), StatusCode::Success);
    handle->traceType = TRACE_ALL;
    handle->traceFormat = FORMAT_TAGS;
    handle->consolePrint = PrintToConsole;
    written.clear();
    {
        FunctionTrace trace(source, "F", "1");
        EXPECT_EQ(trace.Fail(StatusCode::Missing, "bad"), StatusCode::Missing);
        EXPECT_EQ(trace.Done(StatusCode::Failed), StatusCode::Failed);
        const FunctionTrace forgotten(source, "F", "2");
    }
    FunctionTrace(source, "F", "3").LeaveUntraced(StatusCode::Success);
    handle->traceFormat = FORMAT_LINE;
    const std::string line = std::to_string(__LINE__ + 1);
    FunctionTrace done(source, "F", "4");
    done.Done(StatusCode::Success, std::source_location());
    EXPECT_EQ(written, "console:\n -->  1console:\n **ERROR**  <--  badconsole:\n -->  2console:\n <--  2"
                       "console:\n -->  3console:\n Ln:" +
                           line + " 4console:\n Ln:0 4");
    handle->traceType = 0;
    bool evaluated = false;
    TRACE(done, TRACE_ERROR, "%d", evaluated = true);
    EXPECT_FALSE(evaluated);

    // The source gives back what it opened, and no more.
    EXPECT_EQ(handle->refCount, 2);
    source.Close();
    source.Close();
    EXPECT_EQ(source.Handle(), nullptr);
    EXPECT_EQ(handle->refCount, 1);
    UnInitDebugHandle(handle);
}

} // namespace
