#include "Platform.h"

namespace Platform
{

namespace
{

constexpr char32_t kReplacementCharacter = 0xFFFD;

/// What the first byte of a well-formed sequence says of the rest: how many bytes follow, the range of the first of
/// them (all later ones lie in 80..BF), and the bits that the first byte carries.
struct LeadByte
{
    unsigned char first;
    unsigned char last;
    unsigned char following;
    unsigned char secondLow;
    unsigned char secondHigh;
    unsigned char bits;
};

constexpr LeadByte kLeadBytes[] = {
    {0xC2, 0xDF, 1, 0x80, 0xBF, 0x1F}, {0xE0, 0xE0, 2, 0xA0, 0xBF, 0x0F}, {0xE1, 0xEC, 2, 0x80, 0xBF, 0x0F},
    {0xED, 0xED, 2, 0x80, 0x9F, 0x0F}, {0xEE, 0xEF, 2, 0x80, 0xBF, 0x0F}, {0xF0, 0xF0, 3, 0x90, 0xBF, 0x07},
    {0xF1, 0xF3, 3, 0x80, 0xBF, 0x07}, {0xF4, 0xF4, 3, 0x80, 0x8F, 0x07},
};

/// Takes one character off the front of `text`, or the longest beginning of one where the rest does not fit.
char32_t TakeCharacter(std::string_view &text)
{
    const auto byteAt = [&text](std::size_t position) { return static_cast<unsigned char>(text[position]); };
    const unsigned char first = byteAt(0);
    if (first < 0x80)
    {
        text.remove_prefix(1);
        return first;
    }
    const LeadByte *lead = nullptr;
    for (const LeadByte &candidate : kLeadBytes)
    {
        if (first >= candidate.first && first <= candidate.last)
            lead = &candidate;
    }
    if (!lead)
    {
        text.remove_prefix(1);
        return kReplacementCharacter;
    }
    char32_t character = first & lead->bits;
    for (std::size_t position = 1; position <= lead->following; ++position)
    {
        const unsigned char low = position == 1 ? lead->secondLow : 0x80;
        const unsigned char high = position == 1 ? lead->secondHigh : 0xBF;
        if (position == text.size() || byteAt(position) < low || byteAt(position) > high)
        {
            text.remove_prefix(position);
            return kReplacementCharacter;
        }
        character = (character << 6U) | (byteAt(position) & 0x3FU);
    }
    text.remove_prefix(lead->following + std::size_t{1});
    return character;
}

} // namespace

std::u16string Utf8ToUtf16(std::string_view text)
{
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty())
    {
        const char32_t character = TakeCharacter(text);
        if (character < 0x10000)
        {
            units += static_cast<char16_t>(character);
            continue;
        }
        units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10U));
        units += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FFU));
    }
    return units;
}

} // namespace Platform
