#pragma once

#include "DebugHandle.h"

/// Where the trace lines of a component come from: its handle, as long as it is open, and the source file that they
/// name. What is open when the object ends is given back. Used from one thread at a time.
class TraceSource
{
public:
    /// `component` is the name by which debug.conf knows the component, `sourceFile` the file's name without folder and
    /// ending; both live as long as the process.
    constexpr TraceSource(const char *component, const char *sourceFile)
        : m_component(component), m_sourceFile(sourceFile)
    {
    }
    ~TraceSource()
    {
        while (m_opens > 0)
            Close();
    }
    TraceSource(const TraceSource &) = delete;
    TraceSource &operator=(const TraceSource &) = delete;

    /// Opens the handle (InitDebugHandle), once more if it is open. Where that fails everything stays as it is.
    void Open();

    /// Takes one opening back (UnInitDebugHandle); the last makes the handle null. Nothing when none is left.
    void Close();

    /// Null while it is not open: then nothing is traced.
    const DebugHandle_t *Handle() const { return m_handle; }
    const char *SourceFile() const { return m_sourceFile; }

private:
    const char *m_component;
    const char *m_sourceFile;
    DebugHandle_t *m_handle = nullptr;
    std::uint32_t m_opens = 0;
};
