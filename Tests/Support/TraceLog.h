#pragma once

#include "DebugHandle.h"

#include <cstdarg>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport
{

/// Everything that one component traces while the object lives: level tags, function and message of each line, as
/// " <--  Fn:readKnob readKnob\n". With TRACE_ERROR the lines of errors alone, also with the tag of a way out.
class TraceLog
{
public:
    explicit TraceLog(const char *componentName, std::uint64_t levels = TRACE_ALL)
    {
        Lines().clear();
        EXPECT_EQ(InitDebugHandle(componentName, &m_handle), StatusCode::Success);
        m_before = *m_handle;
        m_handle->traceType = levels == TRACE_ERROR ? std::uint64_t{TRACE_FAILURE} : levels;
        m_errorsOnly = levels == TRACE_ERROR;
        m_handle->traceFormat = FORMAT_TAGS | FORMAT_FUNCTION;
        m_handle->consolePrint = Collect;
    }
    ~TraceLog()
    {
        m_handle->traceType = m_before.traceType;
        m_handle->traceFormat = m_before.traceFormat;
        m_handle->consolePrint = m_before.consolePrint;
        UnInitDebugHandle(m_handle);
    }
    TraceLog(const TraceLog &) = delete;
    TraceLog &operator=(const TraceLog &) = delete;

    /// The lines since the last call.
    static std::vector<std::string> Take() { return std::exchange(Lines(), {}); }

private:
    static std::vector<std::string> &Lines()
    {
        static std::vector<std::string> lines;
        return lines;
    }

    static int Collect(const char *format, ...)
    {
        char text[1024];
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        if (!m_errorsOnly || std::strstr(text, " **ERROR** "))
            Lines().emplace_back(text + 1); // without the line break in front
        return length;
    }

    static inline bool m_errorsOnly = false;
    DebugHandle_t *m_handle = nullptr;
    DebugHandle_t m_before;
};

} // namespace TestSupport
