#include "CommandLine.h"

#include <algorithm>

namespace Platform
{

namespace
{

constexpr std::string_view kBlanks = " \t";

bool IsBlank(char character)
{
    return kBlanks.find(character) != std::string_view::npos;
}

/// Takes the program off the front of `rest`.
std::string TakeProgram(std::string_view &rest)
{
    std::string program;
    bool quoted = false;
    std::size_t position = 0;
    for (; position < rest.size() && (quoted || !IsBlank(rest[position])); ++position)
    {
        if (rest[position] == '"')
            quoted = !quoted;
        else
            program += rest[position];
    }
    rest.remove_prefix(position);
    return program;
}

/// Takes one argument after the program off the front of `rest`, which starts with its first character.
std::string TakeArgument(std::string_view &rest)
{
    std::string argument;
    bool quoted = false;
    std::size_t position = 0;
    while (position < rest.size() && (quoted || !IsBlank(rest[position])))
    {
        const std::size_t backslashes = std::min(rest.find_first_not_of('\\', position), rest.size()) - position;
        position += backslashes;
        const bool beforeQuote = position < rest.size() && rest[position] == '"';
        argument.append(beforeQuote ? backslashes / 2 : backslashes, '\\');
        if (beforeQuote && backslashes % 2 == 1)
        {
            argument += '"';
            ++position;
        }
        else if (beforeQuote && quoted && rest.substr(position + 1, 1) == "\"")
        {
            argument += '"';
            position += 2;
        }
        else if (beforeQuote)
        {
            quoted = !quoted;
            ++position;
        }
        else if (backslashes == 0)
            argument += rest[position++];
    }
    rest.remove_prefix(position);
    return argument;
}

} // namespace

std::vector<std::string> SplitCommandLine(std::string_view commandLine)
{
    std::vector<std::string> arguments;
    if (commandLine.empty())
        return arguments;
    arguments.push_back(TakeProgram(commandLine));
    for (;;)
    {
        commandLine.remove_prefix(std::min(commandLine.find_first_not_of(kBlanks), commandLine.size()));
        if (commandLine.empty())
            return arguments;
        arguments.push_back(TakeArgument(commandLine));
    }
}

} // namespace Platform
