#include "xmlInterfaceText.h"

#include "AppendUtf8.h"
#include "PrintableAscii.h"

#include <algorithm>
#include <libxml/chvalid.h>
#include <libxml/xmlstring.h>
#include <string_view>

namespace
{

constexpr char kReplacementCharacter[] = "\xEF\xBF\xBD";

bool IsHighSurrogate(int character)
{
    return character >= 0xD800 && character < 0xDC00;
}
bool IsLowSurrogate(int character)
{
    return character >= 0xDC00 && character < 0xE000;
}

/// The surrogate that is encoded by itself at `position`, or 0. Decoded here, because libxml2's own decoder takes such
/// bytes for ill-formed in later versions.
int SurrogateAt(const xmlChar *position, const xmlChar *end)
{
    if (end - position < 3 || position[0] != 0xED || position[1] < 0xA0 || position[1] > 0xBF || position[2] < 0x80 ||
        position[2] > 0xBF)
        return 0;
    return 0xD000 | (position[1] & 0x3F) << 6 | (position[2] & 0x3F);
}

/// Takes one character, or two surrogates that make one, off the front; -1 where there is none.
int TakeCharacter(const xmlChar *&position, const xmlChar *end)
{
    constexpr std::ptrdiff_t kSurrogateLength = 3;
    if (const int first = SurrogateAt(position, end))
    {
        position += kSurrogateLength;
        const int second = SurrogateAt(position, end);
        if (!IsHighSurrogate(first) || !IsLowSurrogate(second))
            return -1;
        position += kSurrogateLength;
        return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    }
    int length = static_cast<int>(end - position);
    const int character = xmlGetUTF8Char(position, &length);
    position += character < 0 ? 1 : length;
    return character;
}

} // namespace

std::string MakeXmlText(std::string text)
{
    if (IsPrintableAscii(text))
        return text;
    std::string result;
    result.reserve(text.size());
    const xmlChar *position = reinterpret_cast<const xmlChar *>(text.data());
    const xmlChar *const end = position + text.size();
    while (position != end)
    {
        const xmlChar *const plain = position;
        position = std::find_if_not(
            position, end, [](xmlChar character) { return IsPrintableAsciiCharacter(static_cast<char>(character)); });
        result.append(reinterpret_cast<const char *>(plain), static_cast<std::size_t>(position - plain));
        if (position == end)
            break;
        const int character = TakeCharacter(position, end);
        if (character < 0 || !xmlIsCharQ(character))
            result += kReplacementCharacter;
        else
            AppendUtf8(result, static_cast<char32_t>(character));
    }
    return result;
}

std::string EscapeReferences(std::string text)
{
    constexpr std::string_view kEscaped = "&amp;";
    std::size_t found = text.find('&');
    if (found == std::string::npos)
        return text;
    std::string result;
    std::size_t begin = 0;
    for (; found != std::string::npos; found = text.find('&', begin))
    {
        result.append(text, begin, found - begin).append(kEscaped);
        begin = found + 1;
    }
    return result.append(text, begin);
}
