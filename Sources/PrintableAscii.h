#pragma once

#include <string_view>

/// Whether a text holds only the characters 32 to 127, which every step on the way into a document leaves as they are.
/// Most texts do, and this test costs next to nothing: the loop has no early way out, so that it runs on vectors.
inline bool IsPrintableAscii(std::string_view text)
{
    unsigned other = 0;
    for (const char character : text)
        other |= static_cast<unsigned>(static_cast<unsigned char>(character - ' ') > 127 - ' ');
    return other == 0;
}
