// Stands in front of Platform's own, so that a target runs a thousand times a second and the dump stays as it was put.

#include "Platform.h"

bool Platform::RunCommand(const std::string & /*commandLine*/, std::uint32_t &exitCode)
{
    exitCode = 0;
    return true;
}
