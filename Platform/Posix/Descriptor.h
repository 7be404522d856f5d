#pragma once

#include <unistd.h>

namespace Platform
{

/// An open file of the system's, closed by the destructor.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool IsOpen() const { return m_descriptor != -1; }
    int Get() const { return m_descriptor; }
    void Release() { m_descriptor = -1; }
    void Close()
    {
        if (IsOpen())
            close(m_descriptor);
        Release();
    }

private:
    int m_descriptor;
};

} // namespace Platform
