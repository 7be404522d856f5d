#include "SanitizeText.h"

#include "AppendUtf8.h"
#include "Platform.h"
#include "PrintableAscii.h"

#include <algorithm>

namespace
{

bool IsControl(char16_t unit)
{
    return unit >= 1 && unit <= 31;
}

} // namespace

std::string SanitizeText(std::string text)
{
    if (IsPrintableAscii(text))
        return text;
    std::string result;
    result.reserve(text.size());
    // Pieces between plain characters can be decoded one by one: no sequence, well-formed or not, reaches across one.
    auto position = text.cbegin();
    while (position != text.cend())
    {
        const auto plain = position;
        position = std::find_if_not(plain, text.cend(), IsPrintableAsciiCharacter);
        const auto other = position;
        position = std::find_if(other, text.cend(), IsPrintableAsciiCharacter);
        result.append(plain, other);
        for (const char16_t unit : Platform::Utf8ToUtf16({other, position}))
            AppendUtf8(result, IsControl(unit) ? u'.' : unit);
    }
    return result;
}
