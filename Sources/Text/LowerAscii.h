#pragma once

#include <algorithm>
#include <string>

/// `text` with its ASCII capitals in lower case, whatever the locale.
inline std::string LowerAscii(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char character)
                   {
                       const bool isCapital = character >= 'A' && character <= 'Z';
                       return isCapital ? static_cast<char>(character - 'A' + 'a') : character;
                   });
    return text;
}
