#include "ProcessUsage.h"

#include "FailingAllocation.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

ProcessUsage UsageOfProcess()
{
    std::size_t mapped = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> mapped >> resident;
    const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    return {static_cast<std::size_t>(liveBlocks), resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
            static_cast<std::size_t>(files)};
}
