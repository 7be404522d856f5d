#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Platform
{

/// Splits a command line into its arguments by the rules of Windows programs: blanks and tabs separate arguments
/// outside quotation marks; in the first argument, the program, a quotation mark only switches quoting and a backslash
/// is an ordinary character; in the others 2n backslashes before a quotation mark stand for n backslashes, one more
/// makes the mark an ordinary character, and two marks inside quotes are one. Unclosed quotes end with the line.
std::vector<std::string> SplitCommandLine(std::string_view commandLine);

} // namespace Platform
