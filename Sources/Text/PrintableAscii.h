#pragma once

#include <string_view>

/// Whether a character is one of 32 to 127, which every step on the way into a document leaves as they are.
constexpr bool IsPrintableAsciiCharacter(char character)
{
    return static_cast<unsigned char>(character - ' ') <= 127 - ' ';
}

/// Whether a text holds only such characters. Most do, and this test costs next to nothing: the loop has no early way
/// out, so that it runs on vectors.
inline bool IsPrintableAscii(std::string_view text)
{
    unsigned char other = 0;
    for (const char character : text)
        other = static_cast<unsigned char>(other | static_cast<unsigned char>(!IsPrintableAsciiCharacter(character)));
    return other == 0;
}
