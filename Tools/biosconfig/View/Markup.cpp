#include "Markup.h"

#include "AppendUtf8.h"

#include <cstddef>

namespace
{

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr char32_t kPictureOfNul = 0x2400;
constexpr char32_t kPictureOfDelete = 0x2421;

unsigned char ByteOf(char character)
{
    return static_cast<unsigned char>(character);
}

/// How many bytes the well-formed sequence at the start of `text` has, which begins with no ASCII; 0 where it is
/// ill-formed.
std::size_t SequenceLength(std::string_view text)
{
    struct Lead
    {
        unsigned char first;
        unsigned char last;
        std::size_t length;
        unsigned char leastSecond;
        unsigned char mostSecond;
    };
    constexpr Lead kLeads[] = {{0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
                               {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
                               {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};
    for (const Lead &lead : kLeads)
    {
        if (ByteOf(text[0]) < lead.first || ByteOf(text[0]) > lead.last)
            continue;
        if (text.size() < lead.length || ByteOf(text[1]) < lead.leastSecond || ByteOf(text[1]) > lead.mostSecond)
            return 0;
        for (std::size_t index = 2; index < lead.length; ++index)
        {
            if ((ByteOf(text[index]) & 0xC0U) != 0x80)
                return 0;
        }
        return lead.length;
    }
    return 0;
}

/// What stands for an ASCII character in markup; empty for itself.
std::string_view ReferenceTo(char character)
{
    switch (character)
    {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    default:
        return {};
    }
}

bool IsControl(char character)
{
    return (ByteOf(character) < ' ' && character != '\t' && character != '\n') || character == '\x7F';
}

/// Appends what `rest` begins with and takes it from there.
void TakeCharacter(std::string &markup, std::string_view &rest)
{
    const char first = rest.front();
    std::size_t length = 1;
    if (ByteOf(first) >= 0x80)
    {
        length = SequenceLength(rest);
        markup += length == 0 ? kReplacement : rest.substr(0, length);
        length = length == 0 ? 1 : length;
    }
    else if (IsControl(first))
        AppendUtf8(markup, first == '\x7F' ? kPictureOfDelete : kPictureOfNul + ByteOf(first));
    else if (const std::string_view reference = ReferenceTo(first); !reference.empty())
        markup += reference;
    else
        markup += first;
    rest.remove_prefix(length);
}

bool StaysAsItIs(char character)
{
    return ByteOf(character) < 0x80 && !IsControl(character) && ReferenceTo(character).empty();
}

void AppendText(std::string &markup, std::string_view text)
{
    while (!text.empty())
    {
        std::size_t plain = 0;
        while (plain < text.size() && StaysAsItIs(text[plain]))
            ++plain;
        markup += text.substr(0, plain);
        text.remove_prefix(plain);
        if (!text.empty())
            TakeCharacter(markup, text);
    }
}

} // namespace

void AppendElementText(std::string &markup, std::string_view text)
{
    AppendText(markup, text);
}

void AppendAttributeText(std::string &markup, std::string_view text)
{
    AppendText(markup, text);
}

void AppendAnchor(std::string &markup, std::string_view text)
{
    constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (const char character : text)
    {
        if (kUnreserved.find(character) != std::string_view::npos)
            markup += character;
        else
            markup.append({'%', kDigits[ByteOf(character) / 16], kDigits[ByteOf(character) % 16]});
    }
}

void AppendScriptJson(std::string &markup, std::string_view json)
{
    while (!json.empty())
    {
        const std::size_t plain = json.find('<');
        markup += json.substr(0, plain);
        if (plain == std::string_view::npos)
            return;
        markup += "\\u003c";
        json.remove_prefix(plain + 1);
    }
}
