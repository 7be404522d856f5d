#include "JSONText.h"

#include "PrintableAscii.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace
{

using json = nlohmann::json;

constexpr int kOneLine = -1;

/// Whether a string stands in a document as it is. Most do; no early way out, so that the loop runs on vectors.
bool IsPlain(std::string_view text)
{
    unsigned char other = 0;
    for (const char character : text)
    {
        const bool plain = IsPrintableAsciiCharacter(character) & (character != '"') & (character != '\\');
        other = static_cast<unsigned char>(other | static_cast<unsigned char>(!plain));
    }
    return other == 0;
}

} // namespace

void JSONText::Clear()
{
    m_text.clear();
    m_isUtf8 = true;
}

void JSONText::Append(const JSONText &other)
{
    m_text.append(other.m_text);
    m_isUtf8 = m_isUtf8 && other.m_isUtf8;
}

void JSONText::AppendString(std::string_view text)
{
    if (IsPlain(text))
    {
        m_text.append(1, '"').append(text).append(1, '"');
        return;
    }
    try
    {
        m_text.append(json(std::string(text)).dump(kOneLine, ' ', false, json::error_handler_t::strict));
    }
    catch (const json::type_error &)
    {
        m_text.append("null"); // in a document that nobody gets
        m_isUtf8 = false;
    }
}

void JSONText::ClearArray()
{
    m_text.resize(m_text.empty() ? 0 : 1);
    m_isUtf8 = true;
}

void JSONText::AppendObject(std::initializer_list<Member> members)
{
    char separator = '{';
    for (const Member &member : members)
    {
        if (member.value.IsEmpty())
            continue;
        m_text.append(1, std::exchange(separator, ',')).append(1, '"').append(member.key).append("\":");
        Append(member.value);
        m_text.append(member.end);
    }
    m_text.append(separator == '{' ? "{}" : "}");
}

std::string JSONText::Take()
{
    m_isUtf8 = true;
    return std::exchange(m_text, {});
}
