#include "RunProgram.h"

#include "CommandLine.h"

#include <process.h>

std::uint32_t TestSupport::RunInSight(const std::string &commandLine)
{
    // The arguments become the command line by being put one behind the other, so the whole line can be the only one.
    const std::string program = Platform::SplitCommandLine(commandLine).at(0);
    return static_cast<std::uint32_t>(_spawnl(_P_WAIT, program.c_str(), commandLine.c_str(), nullptr));
}
