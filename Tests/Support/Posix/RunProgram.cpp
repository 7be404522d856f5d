#include "RunProgram.h"

#include "Platform.h"

std::uint32_t TestSupport::RunInSight(const std::string &commandLine)
{
    std::uint32_t exitCode = Platform::kUnknownExitCode;
    Platform::RunCommand(commandLine, exitCode);
    return exitCode;
}
