#include "DebugTrace.h"
#include "TestSupport.h"

#include <cstdarg>
#include <gtest/gtest.h>
#include <string>

namespace
{

std::string printed;
std::string calledBack;

/// Both are given a header and a message to print with "%s %s".
int PrintToConsole(const char *format, ...)
{
    std::va_list texts;
    va_start(texts, format);
    char line[512];
    const int length = std::vsnprintf(line, sizeof line, format, texts);
    va_end(texts);
    printed += std::string("console:") + line;
    return length;
}

int PrintToFile(std::FILE *stream, const char *format, ...)
{
    std::va_list texts;
    va_start(texts, format);
    const std::string header = va_arg(texts, const char *);
    printed += (stream == stdout ? "global:" : "package:") + header + ' ' + va_arg(texts, const char *);
    va_end(texts);
    return format ? 1 : 0;
}

Status CallBack(std::uint32_t level, const char *message, std::uint32_t size)
{
    calledBack += std::to_string(level) + ':' + message + ':' + std::to_string(size);
    return StatusCode::Failed;
}

/// A handle that prints every level to the console, without the time.
DebugHandle_t Loud()
{
    DebugHandle_t handle;
    handle.traceType = TRACE_ALL;
    handle.traceFormat = FORMAT_TAGS | FORMAT_FUNCTION | FORMAT_LINE;
    handle.consolePrint = PrintToConsole;
    handle.customPrint = PrintToConsole;
    handle.filePrint = PrintToFile;
    handle.globalFile = stdout;
    handle.packageFile = stderr;
    return handle;
}

std::string Print(const DebugHandle_t &handle, std::uint32_t level, const char *function = "Class::Operation",
                  std::uint32_t line = 120, const char *message = "text\n")
{
    printed.clear();
    calledBack.clear();
    EXPECT_EQ(DebugTrace(&handle, "file", function, line, level, "%s", message), StatusCode::Success);
    return printed;
}

TEST(DebugTrace, NullHandleIsRefusedAndANewOneIsSilent)
{
    EXPECT_EQ(DebugTrace(nullptr, "file", "function", 1, TRACE_ERROR, "text"), StatusCode::Missing);
    testing::internal::CaptureStdout();
    const DebugHandle_t handle;
    for (std::uint32_t level = 0; level <= TRACE_ALL; ++level)
        EXPECT_EQ(DebugTrace(&handle, "file", "function", 1, level, "text"), StatusCode::Success);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(DebugTrace, ComposesTheFieldsThatTheFormatNames)
{
    const struct
    {
        std::uint64_t traceType;
        std::uint32_t format;
        std::uint32_t level;
        std::string function;
        std::uint32_t line;
        std::string expected;
    } cases[] = {
        {63, 11, TRACE_ENTRY, "F", 48, "\n -->  Fn:F Ln:48 text\n"},
        {63, 11, TRACE_FAILURE, "F", 120, "\n **ERROR**  <--  Fn:F Ln:120 text\n"},
        {63, 11, TRACE_ALL, "F", 1, "\n Info  PARAM  WARN  **ERROR**  -->  <--  Fn:F Ln:1 text\n"},
        {16, 11, TRACE_FAILURE, "F", 120, "\n **ERROR**  Fn:F Ln:120 text\n"},
        {63, 3, TRACE_FAILURE, "F", 120, "\n Fn:F Ln:120 text\n"},
        {63, 0, TRACE_ERROR, "F", 120, "\n text\n"},
        {63, 8, TRACE_ERROR, "F", 120, "\n **ERROR**  text\n"},
        {63, 2, TRACE_ERROR, "F", 999999, "\n Ln:999999 text\n"},
        {63, 2, TRACE_ERROR, "F", 1234567, "\n Ln: text\n"},
        {63, 1, TRACE_ERROR, std::string(94, 'f'), 1, "\n Fn:" + std::string(94, 'f') + " text\n"},
        {63, 1, TRACE_ERROR, std::string(95, 'f'), 1, " text\n"},
        {32, 11, TRACE_ERROR, "F", 1, ""},
    };
    for (const auto &row : cases)
    {
        DebugHandle_t handle = Loud();
        handle.traceType = row.traceType;
        handle.traceFormat = row.format;
        const std::string expected = row.expected.empty() ? "" : "console:" + row.expected;
        EXPECT_EQ(Print(handle, row.level, row.function.c_str(), row.line), expected);
    }
}

TEST(DebugTrace, TimeIsMillisecondsAndAMessageIsCutTo255)
{
    DebugHandle_t handle = Loud();
    handle.traceFormat = FORMAT_TIME;
    const std::string first = Print(handle, TRACE_INFO, "F", 1, "");
    EXPECT_TRUE(first.starts_with("console:\n TS:")) << first;
    EXPECT_EQ(first.find_first_not_of("0123456789", 13), first.size() - 1) << first;
    handle.traceFormat = 0;
    EXPECT_EQ(Print(handle, TRACE_INFO, "F", 1, std::string(300, 'm').c_str()), "console:\n " + std::string(255, 'm'));
}

TEST(DebugTrace, WritesToTheSinksThatAreSelected)
{
    const struct
    {
        std::uint64_t output;
        bool logToPackageFile;
        const char *expected;
    } cases[] = {
        {0, true, ""},
        {OUTPUT_CUSTOM, true, ""},
        {OUTPUT_CONSOLE | OUTPUT_CUSTOM, true, "console:\n xconsole:\n x"},
        {OUTPUT_FILE, true, "package:\n xglobal:\n x"},
        {OUTPUT_FILE, false, "global:\n x"},
        {OUTPUT_ALL, true, "console:\n xpackage:\n xglobal:\n xconsole:\n x"},
    };
    for (const auto &row : cases)
    {
        DebugHandle_t handle = Loud();
        handle.traceFormat = 0;
        handle.outputType = row.output;
        handle.logToPackageFile = row.logToPackageFile;
        EXPECT_EQ(Print(handle, TRACE_WARN, "F", 1, "x"), row.expected) << row.output;
    }
}

TEST(DebugTrace, CallbackGetsTheMessageWhateverIsEnabled)
{
    DebugHandle_t handle = Loud();
    handle.callback = CallBack;
    handle.callbackMask = TRACE_ERROR;
    handle.traceType = 0;
    handle.outputType = 0;
    EXPECT_EQ(Print(handle, TRACE_FAILURE), "");
    EXPECT_EQ(calledBack, "16:text\n:281");
    Print(handle, TRACE_ENTRY);
    EXPECT_EQ(calledBack, "");
}

TEST(FunctionTrace, WritesTheWayOutOnceAndEvaluatesNothingWhenDisabled)
{
    DebugHandle_t handle = Loud();
    handle.traceFormat = FORMAT_TAGS;
    printed.clear();
    {
        FunctionTrace(&handle, "file", "F", "1\n").Done(StatusCode::Success);
    }
    {
        FunctionTrace(&handle, "file", "F", "2\n").Fail(StatusCode::Missing, "bad\n");
    }
    {
        FunctionTrace(&handle, "file", "F", "3\n").LeaveUntraced(StatusCode::Success);
    }
    {
        const FunctionTrace forgotten(&handle, "file", "F", "4\n");
    }
    EXPECT_EQ(printed, "console:\n -->  1\nconsole:\n <--  1\nconsole:\n -->  2\nconsole:\n **ERROR**  <--  bad\n"
                       "console:\n -->  3\nconsole:\n -->  4\nconsole:\n <--  4\n");

    handle.traceType = 0;
    bool evaluated = false;
    const FunctionTrace quiet(&handle, "file", "F");
    TRACE(quiet, TRACE_ERROR, "%d", evaluated = true);
    EXPECT_FALSE(evaluated);
}

TEST(DebugHandle, IsSharedByNameUntilTheLastRelease)
{
    DebugHandle_t *first = nullptr, *second = nullptr, *empty = nullptr;
    EXPECT_EQ(InitDebugHandle("A", &first), StatusCode::Success);
    EXPECT_EQ(InitDebugHandle("", &empty), StatusCode::Success);
    EXPECT_EQ(InitDebugHandle("A", &second), StatusCode::Success);
    ASSERT_TRUE(first && first == second && empty && empty != first);
    DebugHandle_t closed = *first;
    closed.componentName = "A";
    EXPECT_EQ(UnInitDebugHandle(first), StatusCode::Success);
    EXPECT_EQ(UnInitDebugHandle(second), StatusCode::Success);
    EXPECT_EQ(UnInitDebugHandle(&closed), StatusCode::Failed);
    EXPECT_EQ(UnInitDebugHandle(empty), StatusCode::Success);
    EXPECT_EQ(UnInitDebugHandle(nullptr), StatusCode::Missing);
    EXPECT_EQ(InitDebugHandle(nullptr, &first), StatusCode::Missing);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(InitDebugHandle("A", nullptr), StatusCode::Missing);
}

} // namespace
