#include "xmlInterfaceText.h"

#include "PrintableAscii.h"

#include <algorithm>
#include <libxml/chvalid.h>
#include <libxml/parserInternals.h>
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

/// Takes one character, or two surrogates that make one, off the front; -1 with one byte taken when ill-formed.
int TakeCharacter(const xmlChar *&position, const xmlChar *end)
{
    const auto decode = [end](const xmlChar *from, int &length)
    {
        length = static_cast<int>(end - from);
        return xmlGetUTF8Char(from, &length);
    };
    int length = 0;
    const int character = decode(position, length);
    position += character < 0 ? 1 : length;
    if (!IsHighSurrogate(character) || position == end)
        return character;
    const int second = decode(position, length);
    if (!IsLowSurrogate(second))
        return character;
    position += length;
    return 0x10000 + ((character - 0xD800) << 10) + (second - 0xDC00);
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
        xmlChar encoded[8];
        if (character < 0 || !xmlIsCharQ(character))
            result += kReplacementCharacter;
        else
            result.append(reinterpret_cast<const char *>(encoded),
                          static_cast<std::size_t>(xmlCopyCharMultiByte(encoded, character)));
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
