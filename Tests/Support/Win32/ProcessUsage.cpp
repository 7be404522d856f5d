#include "ProcessUsage.h"

#include <malloc.h>
#include <psapi.h>
#include <windows.h>

ProcessUsage UsageOfProcess()
{
    ProcessUsage usage = {};
    _HEAPINFO entry = {};
    while (_heapwalk(&entry) == _HEAPOK)
        usage.heapBlocks += entry._useflag == _USEDENTRY ? 1 : 0;
    PROCESS_MEMORY_COUNTERS memory = {};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory))
        usage.residentBytes = memory.WorkingSetSize;
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles))
        usage.openFiles = handles;
    return usage;
}
