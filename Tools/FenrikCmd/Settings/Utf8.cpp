#include "Utf8.h"

#include <algorithm>
#include <array>
#include <libxml/parserInternals.h>
#include <string_view>

bool IsPlainText(const std::string &text)
{
    return std::all_of(text.begin(), text.end(), [](char character) { return character >= ' ' && character <= '~'; });
}

namespace
{

constexpr std::size_t kLongestCharacter = 4;

/// The length of the character in front of `text`; 0 where XML cannot hold it or it is ill-formed. What libxml2 decodes
/// is encoded again, since it takes some ill-formed sequences for characters.
std::size_t FittingLength(std::string_view text)
{
    const auto *const bytes = reinterpret_cast<const xmlChar *>(text.data());
    int length = static_cast<int>(std::min(text.size(), kLongestCharacter));
    const int character = xmlGetUTF8Char(bytes, &length);
    if (character < 0 || character == '\r' || !IS_CHAR(static_cast<unsigned>(character)))
        return 0;
    std::array<xmlChar, kLongestCharacter> encoded = {};
    const int encodedLength = xmlCopyCharMultiByte(encoded.data(), character);
    return encodedLength == length && std::equal(bytes, bytes + length, encoded.begin())
               ? static_cast<std::size_t>(length)
               : 0;
}

} // namespace

std::string FittingText(const std::string &text)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string fitting;
    fitting.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
    {
        const std::string_view rest = std::string_view(text).substr(at);
        const std::size_t length = FittingLength(rest);
        fitting += length > 0 ? rest.substr(0, length) : kReplacement;
        at += std::max<std::size_t>(length, 1);
    }
    return fitting;
}
