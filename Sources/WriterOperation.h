#pragma once

#include "DebugTrace.h"
#include "ExceptionBarrier.h"

/// The trace handle of a writer, open while the writer lives. `component` is the name of the writer's class and source
/// file, a literal.
class WriterHandle
{
public:
    explicit WriterHandle(const char *component) : m_component(component) { InitDebugHandle(component, &m_handle); }
    ~WriterHandle() { UnInitDebugHandle(m_handle); }
    WriterHandle(const WriterHandle &) = delete;
    WriterHandle &operator=(const WriterHandle &) = delete;

    const DebugHandle_t *Get() const { return m_handle; }
    const char *Component() const { return m_component; }

private:
    const char *m_component;
    DebugHandle_t *m_handle = nullptr;
};

/// One call of one operation of a writer: its trace lines, its checks in the order in which they are written down (the
/// first that fails decides), and its body, which runs when all have passed and out of which nothing is thrown.
class WriterOperation
{
public:
    /// Writes the entry line. `function` is the name of class and operation.
    WriterOperation(const WriterHandle &handle, const char *function,
                    std::source_location where = std::source_location::current())
        : m_trace(handle.Get(), handle.Component(), function, TraceText("\n", where))
    {
    }

    /// An argument that the operation cannot do without: NotFound.
    WriterOperation &Argument(bool given, TraceText otherwise) { return Check(given, StatusCode::NotFound, otherwise); }

    /// Something that an earlier operation creates: Missing.
    WriterOperation &Needs(bool present, TraceText otherwise) { return Check(present, StatusCode::Missing, otherwise); }

    /// Ends the operation with `failure` and the line `otherwise`, unless `passed`. A body may call it, too.
    WriterOperation &Check(bool passed, Status failure, TraceText otherwise)
    {
        if (!passed && m_status == StatusCode::Success)
            m_status = m_trace.Fail(failure, otherwise);
        return *this;
    }

    /// Runs `body`, writes the exit line and returns the operation's status.
    template <typename Body>
    Status Run(Body &&body, std::source_location where = std::source_location::current())
    {
        return m_trace.Done(RunBody(std::forward<Body>(body)), where);
    }

    template <typename Body>
    Status RunWithoutExitLine(Body &&body)
    {
        return m_trace.LeaveUntraced(RunBody(std::forward<Body>(body)));
    }

    const FunctionTrace &Trace() const { return m_trace; }

private:
    template <typename Body>
    Status RunBody(Body &&body)
    {
        if (m_status != StatusCode::Success)
            return m_status;
        const auto runBody = [&]
        {
            body();
            return m_status;
        };
        return WithoutExceptions(m_trace, runBody);
    }

    FunctionTrace m_trace;
    Status m_status = StatusCode::Success;
};
