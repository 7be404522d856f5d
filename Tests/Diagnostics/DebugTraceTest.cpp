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
    written += std::to_string(level) + ':' + message + ':' + std::to_string(size);
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
        std::uint64_t traceType, outputType;
        std::uint32_t format, level, line;
        std::string function, message, expected;
    } cases[] = {
        {63, 1, 11, TRACE_ENTRY, 48, "F", "x\n", "console:\n -->  Fn:F Ln:48 x\n"},
        {63, 1, 8, TRACE_ALL, 1, "F", "x", "8:x:281console:\n Info  PARAM  WARN  **ERROR**  -->  <--  x"},
        {16, 1, 11, TRACE_FAILURE, 120, "F", "x", "console:\n **ERROR**  Fn:F Ln:120 x"},
        {32, 1, 11, TRACE_ERROR, 120, "F", "x", ""},
        {63, 1, 3, TRACE_FAILURE, 120, "F", "x", "console:\n Fn:F Ln:120 x"},
        {63, 1, 2, TRACE_ERROR, 999999, "F", "x", "console:\n Ln:999999 x"},
        {63, 1, 2, TRACE_ERROR, 1234567, "F", "x", "console:\n Ln: x"},
        {63, 1, 1, TRACE_ERROR, 1, fits, "x", "console:\n Fn:" + fits + " x"},
        {63, 1, 1, TRACE_ERROR, 1, tooLong, "x", "console: x"},
        {63, 1, 3, TRACE_ERROR, 120, tooLongWithLine, "x", "console: x"},
        {63, 1, 0, TRACE_ERROR, 1, "F", std::string(300, 'm'), "console:\n " + std::string(255, 'm')},
        {63, 5, 0, TRACE_ERROR, 1, "F", "x", "console:\n xconsole:\n x"},
        {63, 7, 0, TRACE_ERROR, 1, "F", "x", "console:\n xpackage:\n xglobal:\n xconsole:\n x"},
        {63, 4, 0, TRACE_WARN | TRACE_EXIT, 1, "F", "x", "8:x:281"},
        {55, 7, 0, TRACE_WARN, 1, "F", "x", "8:x:281"},
    };
    for (const auto &row : cases)
    {
        const DebugHandle_t handle = MakeHandle(row.traceType, row.outputType, row.format);
        EXPECT_EQ(DebugTrace(&handle, "file", row.function.c_str(), row.line, row.level, "%s", row.message.c_str()),
                  StatusCode::Success);
        EXPECT_EQ(written, row.expected);
    }
}

TEST(DebugTrace, NeedsAHandleButNoNameAndNoMessage)
{
    EXPECT_EQ(DebugTrace(nullptr, "file", "function", 1, TRACE_ERROR, "text"), StatusCode::Missing);
    const DebugHandle_t handle = MakeHandle(63, 1, FORMAT_FUNCTION | FORMAT_TIME);
    DebugTrace(&handle, "file", nullptr, 1, TRACE_ERROR, "%s", "");
    EXPECT_TRUE(written.starts_with("console:\n Fn:(null) TS:")) << written;
    EXPECT_EQ(written.find_first_not_of("0123456789", 23), written.size() - 1) << written;
}

TEST(DebugTrace, PrintFunctionsOfTheLibraryAndOfOthersGetTheSameLine)
{
    DebugHandle_t handle = MakeHandle(63, 7, 0);
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
    const std::string line = " **ERROR**  Fn:F ";
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
