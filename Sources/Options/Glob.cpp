#include "Glob.h"

#include <algorithm>

namespace
{

char Lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool MatchesGlob(std::string_view pattern, std::string_view text)
{
    std::size_t at = 0;
    std::size_t in = 0;
    // The last "*", and what it stands for up to; where the rest does not fit it stands for more.
    std::size_t star = std::string_view::npos;
    std::size_t starEnd = 0;
    while (in < text.size())
    {
        if (at < pattern.size() && pattern[at] == '*')
        {
            star = at++;
            starEnd = in;
        }
        else if (at < pattern.size() && (pattern[at] == '?' || Lower(pattern[at]) == Lower(text[in])))
        {
            ++at;
            ++in;
        }
        else if (star != std::string_view::npos)
        {
            at = star + 1;
            in = ++starEnd;
        }
        else
            return false;
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view lowerWanted)
{
    const auto *const found = std::search(text.begin(), text.end(), lowerWanted.begin(), lowerWanted.end(),
                                          [](char left, char right) { return Lower(left) == right; });
    return found == text.end() && !lowerWanted.empty() ? std::string_view::npos
                                                       : static_cast<std::size_t>(found - text.begin());
}
