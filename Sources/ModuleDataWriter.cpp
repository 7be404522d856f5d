#include "ModuleDataWriter.h"

#include "ModuleUIXMLWriter.h"
#include "Platform.h"
#include "PrintableAscii.h"

#include <array>
#include <new>

namespace
{

template <typename Writer>
ModuleDataWriter *MakeWriter()
{
    return new (std::nothrow) Writer;
}

using WriterMaker = ModuleDataWriter *(*)();

/// By output kind; a new format gets its line here.
constexpr std::array<WriterMaker, 10> kWriterMakers = {
    MakeWriter<ModuleUIXMLWriter>, // UiXml
    MakeWriter<ModuleUIXMLWriter>, // UiXmlAlternate
    nullptr,                       // LogXml
    nullptr,                       // LogXmlAlternate
    nullptr,                       // LogHtml
    nullptr,                       // LogHtmlAlternate
    nullptr,                       // LogHtmlXml
    nullptr,                       // LogHtmlXmlAlternate
    nullptr,                       // LogJson
    nullptr,                       // UiJson
};

void AppendUnit(std::string &text, char16_t unit)
{
    const auto append = [&text](unsigned byte) { text += static_cast<char>(byte); };
    if (unit < 0x80)
    {
        append(unit);
        return;
    }
    if (unit < 0x800)
        append(0xC0U | (unit >> 6U));
    else
    {
        append(0xE0U | (unit >> 12U));
        append(0x80U | ((unit >> 6U) & 0x3FU));
    }
    append(0x80U | (unit & 0x3FU));
}

bool IsControl(char16_t unit)
{
    return unit >= 1 && unit <= 31;
}

} // namespace

ModuleDataWriter *CreateModuleDataWriter(OutputKind kind)
{
    const auto index = static_cast<std::size_t>(kind);
    return index < kWriterMakers.size() && kWriterMakers[index] ? kWriterMakers[index]() : nullptr;
}

void DestroyModuleDataWriter(ModuleDataWriter *writer)
{
    delete writer;
}

std::string ModuleDataWriter::SanitizeText(std::string text)
{
    if (IsPrintableAscii(text))
        return text;
    std::string result;
    result.reserve(text.size());
    for (const char16_t unit : Platform::Utf8ToUtf16(text))
        AppendUnit(result, IsControl(unit) ? u'.' : unit);
    return result;
}

std::vector<std::string> ModuleDataWriter::SplitString(std::string_view text, std::string_view separator)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t found = text.find(separator); found != std::string_view::npos; found = text.find(separator, begin))
    {
        pieces.emplace_back(text.substr(begin, found - begin));
        begin = found + separator.size();
    }
    pieces.emplace_back(text.substr(begin));
    return pieces;
}

std::vector<std::string> ModuleDataWriter::SplitByChar(std::string_view text, char delimiter)
{
    std::vector<std::string> pieces = SplitString(text, {&delimiter, 1});
    if (pieces.back().empty())
        pieces.pop_back();
    return pieces;
}

std::string ModuleDataWriter::ReplaceAll(std::string_view text, std::string_view search, std::string_view replacement)
{
    std::string result;
    std::size_t begin = 0;
    for (std::size_t found = text.find(search); found != std::string_view::npos; found = text.find(search, begin))
    {
        result.append(text, begin, found - begin).append(replacement);
        begin = found + search.size();
    }
    return result.append(text, begin);
}

std::string ModuleDataWriter::ToDecimalString(std::uint32_t number)
{
    return std::to_string(number);
}
