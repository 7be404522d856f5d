#pragma once

#include <string>

/// Appends a character to `text` in UTF-8; a surrogate is encoded by itself, as if it were a character.
inline void AppendUtf8(std::string &text, char32_t character)
{
    if (character < 0x80)
    {
        text += static_cast<char>(character);
        return;
    }
    constexpr unsigned kBitsOfAByte = 6;
    unsigned bitsBehind = character < 0x800 ? 6 : character < 0x10000 ? 12 : 18;
    const char32_t lead = character < 0x800 ? 0xC0 : character < 0x10000 ? 0xE0 : 0xF0;
    text += static_cast<char>(lead | character >> bitsBehind);
    while (bitsBehind != 0)
    {
        bitsBehind -= kBitsOfAByte;
        text += static_cast<char>(0x80 | (character >> bitsBehind & 0x3F));
    }
}
