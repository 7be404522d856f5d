#include "xmlSavedForm.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <libxml/chvalid.h>
#include <utility>

namespace
{

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\"?>\n";
constexpr std::size_t kMostLevels = 4;
constexpr std::size_t kMostAttributes = 8;

enum CharacterClass : std::uint8_t
{
    NAME_START = 1,
    NAME = 2,
    /// Stands in a value as it is.
    PLAIN = 4
};

constexpr std::array<std::uint8_t, 256> kClasses = []
{
    std::array<std::uint8_t, 256> classes = {};
    for (std::size_t character = ' '; character < 127; ++character)
    {
        const auto isOneOf = [character](std::string_view set)
        { return set.find(static_cast<char>(character)) != std::string_view::npos; };
        const std::size_t letter = character | 0x20;
        const bool isStart = (letter >= 'a' && letter <= 'z') || character == '_';
        const bool isName = isStart || (character >= '0' && character <= '9') || isOneOf("-.");
        classes[character] = static_cast<std::uint8_t>((isStart ? NAME_START : 0) | (isName ? NAME : 0) |
                                                       (isOneOf("<>&\"") ? 0 : PLAIN));
    }
    return classes;
}();

bool Is(char character, CharacterClass wanted)
{
    return (kClasses[static_cast<unsigned char>(character)] & wanted) != 0;
}

/// Goes through the elements of a text, from its beginning on.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    std::string_view Rest() const { return m_rest; }

    /// Takes what stands in front of the rest; false, with nothing taken, where it does not stand there.
    bool Take(std::string_view wanted)
    {
        const bool stands = m_rest.starts_with(wanted);
        m_rest.remove_prefix(stands ? wanted.size() : 0);
        return stands;
    }

    /// Takes a start tag up to its end, ">" or "/>".
    bool TakeStart(std::string_view &name)
    {
        if (!Take("<") || !TakeName(name))
            return false;
        std::array<std::string_view, kMostAttributes> taken;
        for (std::size_t count = 0; Take(" "); ++count)
        {
            if (count == kMostAttributes || !TakeName(taken[count]) || !Take("=\"") || !TakeValue())
                return false;
            const auto *const last = &taken[count];
            if (*last == "xmlns" || std::find(std::as_const(taken).data(), last, *last) != last)
                return false;
        }
        return true;
    }

    /// Takes elements as long as there are some; false when one of them is not in the form.
    bool TakeElements(std::size_t levels)
    {
        while (m_rest.starts_with('<') && !m_rest.starts_with("</"))
        {
            if (levels == 0 || !TakeElement(levels))
                return false;
        }
        return true;
    }

    bool TakeEnd(std::string_view name) { return Take("</") && Take(name) && Take(">"); }

private:
    bool TakeElement(std::size_t levels)
    {
        std::string_view name;
        if (!TakeStart(name))
            return false;
        // An element without children is never saved with two tags.
        return Take("/>") || (Take(">") && !m_rest.starts_with("</") && TakeElements(levels - 1) && TakeEnd(name));
    }

    bool TakeName(std::string_view &name)
    {
        if (m_rest.empty() || !Is(m_rest.front(), NAME_START))
            return false;
        name = TakeWhile(NAME);
        return true;
    }

    /// Takes a value and the quotation mark behind it.
    bool TakeValue()
    {
        for (;;)
        {
            TakeWhile(PLAIN);
            if (Take("\""))
                return true;
            if (!TakeReference())
                return false;
        }
    }

    bool TakeReference()
    {
        for (const std::string_view reference : {"&quot;", "&lt;", "&gt;", "&amp;", "&#9;", "&#10;", "&#13;"})
        {
            if (Take(reference))
                return true;
        }
        return Take("&#x") && TakeCharacterNumber() && Take(";");
    }

    /// Takes the number of a character beyond ASCII as libxml2 writes it.
    bool TakeCharacterNumber()
    {
        unsigned number = 0;
        const auto [end, error] = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), number, 16);
        const std::string_view digits = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.data()));
        const bool isWritten = error == std::errc() && !digits.starts_with('0') &&
                               digits.find_first_of("abcdef") == std::string_view::npos;
        m_rest.remove_prefix(digits.size());
        return isWritten && number >= 0x80 && xmlIsCharQ(number);
    }

    std::string_view TakeWhile(CharacterClass wanted)
    {
        const std::string_view from = m_rest;
        std::size_t length = 0;
        while (length < from.size() && Is(from[length], wanted))
            ++length;
        m_rest.remove_prefix(length);
        return from.substr(0, length);
    }

    std::string_view m_rest;
};

} // namespace

std::string_view RootChildrenInSavedForm(std::string_view document)
{
    Scanner scanner(document);
    std::string_view root;
    if (!scanner.Take(kDeclaration) || !scanner.TakeStart(root) || !scanner.Take(">"))
        return {};
    const std::string_view children = scanner.Rest();
    if (!scanner.TakeElements(kMostLevels))
        return {};
    const std::size_t length = children.size() - scanner.Rest().size();
    return scanner.TakeEnd(root) && scanner.Rest() == "\n" ? children.substr(0, length) : std::string_view();
}
