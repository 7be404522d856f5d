#include "Utf8.h"

#include <algorithm>
#include <libxml/parserInternals.h>
#include <string_view>

bool IsPlainText(const std::string &text)
{
    return std::all_of(text.begin(), text.end(), [](char character) { return character >= ' ' && character <= '~'; });
}

std::string FittingText(const std::string &text)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    constexpr std::size_t kLongestCharacter = 4;
    std::string fitting;
    fitting.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
    {
        const std::string_view rest = std::string_view(text).substr(at);
        int length = static_cast<int>(std::min(rest.size(), kLongestCharacter));
        const int character = xmlGetUTF8Char(reinterpret_cast<const xmlChar *>(text.c_str() + at), &length);
        const bool isFit = character >= 0 && character != '\r' && IS_CHAR(static_cast<unsigned>(character));
        const std::size_t taken = isFit ? static_cast<std::size_t>(length) : 1;
        fitting += isFit ? rest.substr(0, taken) : kReplacement;
        at += taken;
    }
    return fitting;
}
