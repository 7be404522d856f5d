#include "ProcessUsage.h"

#include <cstdint>
#include <malloc.h>
// The second one needs the first.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

namespace
{

constexpr std::uintptr_t kHandleStep = 4;
constexpr std::uintptr_t kMostHandles = 2048;

} // namespace

ProcessUsage UsageOfProcess()
{
    ProcessUsage usage = {};
    _HEAPINFO entry = {};
    while (_heapwalk(&entry) == _HEAPOK)
        usage.heapBlocks += entry._useflag == _USEDENTRY ? 1 : 0;
    PROCESS_MEMORY_COUNTERS memory = {};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory))
        usage.residentBytes = memory.WorkingSetSize;
    // GetProcessHandleCount is not there under Wine.
    for (std::uintptr_t handle = kHandleStep; handle < kMostHandles * kHandleStep; handle += kHandleStep)
    {
        DWORD flags = 0;
        usage.openFiles += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) ? 1 : 0;
    }
    return usage;
}
