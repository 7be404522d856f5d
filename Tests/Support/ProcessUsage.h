#pragma once

#include <cstddef>

/// What this process holds of the system.
struct ProcessUsage
{
    /// Blocks of the C heap that are in use.
    std::size_t heapBlocks;
    std::size_t residentBytes;
    /// Descriptors on POSIX, handles of every kind on Windows.
    std::size_t openFiles;
};

/// POSIX: liveBlocks of FailingAllocation.h, /proc/self. Windows: _heapwalk, GetProcessMemoryInfo,
/// GetHandleInformation.
ProcessUsage UsageOfProcess();
