// Command lines: what is quoted by the rules comes back, whatever it is.

#include "CommandLine.h"
#include "Fuzzing.h"

namespace
{

/// An argument behind the program, quoted so that it comes back: backslashes count twice in front of a quotation mark.
std::string Quoted(const std::string &argument)
{
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument)
    {
        if (character == '"')
            text.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, '\\') + '"';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view line = Fuzzing::Text(bytes, size);
    const std::vector<std::string> arguments = Platform::SplitCommandLine(line);
    Fuzzing::Require(arguments.empty() == line.empty(), "only an empty line has no program");
    std::string again;
    for (const std::string &argument : arguments)
        again += again.empty() ? '"' + argument + '"' : ' ' + Quoted(argument);
    Fuzzing::Require(Platform::SplitCommandLine(again) == arguments, "quoted arguments come back");
    return 0;
}
