// Writes the tool's dump of so many invented options to standard output.
// Usage: MakeDump COUNT

#include "GeneratedDump.h"

#include <cstdlib>
#include <iostream>

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 2)
        return 2;
    const std::string dump = GenerateDump(std::strtoul(arguments[1], nullptr, 10));
    std::cout.write(dump.data(), static_cast<std::streamsize>(dump.size()));
    return std::cout.flush() ? 0 : 1;
}
