#include "ModuleDataWriter.h"

#include "AppendUtf8.h"
#include "ExceptionBarrier.h"
#include "ModuleLogHTMLWriter.h"
#include "ModuleLogHTMLXMLWriter.h"
#include "ModuleLogJSONWriter.h"
#include "ModuleLogXMLWriter.h"
#include "ModuleUIJSONWriter.h"
#include "ModuleUIXMLWriter.h"
#include "Platform.h"
#include "PrintableAscii.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::size_t kUsualPieces = 4;

template <typename Writer>
ModuleDataWriter *MakeWriter()
{
    ModuleDataWriter *writer = nullptr;
    WithoutExceptions(
        [&writer]
        {
            writer = new Writer;
            return StatusCode::Success;
        });
    return writer;
}

using WriterMaker = ModuleDataWriter *(*)();

/// By output kind; a new format gets its line here.
constexpr std::array<WriterMaker, 10> kWriterMakers = {
    MakeWriter<ModuleUIXMLWriter>,      // UiXml
    MakeWriter<ModuleUIXMLWriter>,      // UiXmlAlternate
    MakeWriter<ModuleLogXMLWriter>,     // LogXml
    MakeWriter<ModuleLogXMLWriter>,     // LogXmlAlternate
    MakeWriter<ModuleLogHTMLWriter>,    // LogHtml
    MakeWriter<ModuleLogHTMLWriter>,    // LogHtmlAlternate
    MakeWriter<ModuleLogHTMLXMLWriter>, // LogHtmlXml
    MakeWriter<ModuleLogHTMLXMLWriter>, // LogHtmlXmlAlternate
    MakeWriter<ModuleLogJSONWriter>,    // LogJson
    MakeWriter<ModuleUIJSONWriter>,     // UiJson
};

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

std::vector<std::string> ModuleDataWriter::SplitString(std::string_view text, std::string_view separator)
{
    const std::vector<std::string_view> pieces = SplitViews(text, separator);
    return {pieces.begin(), pieces.end()};
}

std::vector<std::string_view> ModuleDataWriter::SplitViews(std::string_view text, std::string_view separator)
{
    std::vector<std::string_view> pieces;
    pieces.reserve(kUsualPieces);
    ForEachPiece(text, separator, [&pieces](std::string_view piece) { pieces.push_back(piece); });
    return pieces;
}

std::vector<std::string_view> ModuleDataWriter::SplitRow(std::string_view row)
{
    std::vector<std::string_view> cells = SplitViews(row, kCellSeparator);
    if (cells.size() > 1)
    {
        cells.front() = WithoutFirst(cells.front());
        cells.back() = WithoutLast(cells.back());
    }
    return cells;
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
