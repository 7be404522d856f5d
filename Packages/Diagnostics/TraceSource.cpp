#include "TraceSource.h"

void TraceSource::Open()
{
    // A handle counts to 65535: who opens it more often than that, without closing it, gets no further opens counted.
    constexpr std::uint32_t kMostOpens = 60000;
    DebugHandle_t *handle = nullptr;
    if (m_opens == kMostOpens || InitDebugHandle(m_component, &handle) != StatusCode::Success)
        return;
    m_handle = handle;
    ++m_opens;
}

void TraceSource::Close()
{
    if (m_opens == 0)
        return;
    UnInitDebugHandle(m_handle);
    if (--m_opens == 0)
        m_handle = nullptr;
}
