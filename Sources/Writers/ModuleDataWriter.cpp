#include "ModuleDataWriter.h"

#include "SanitizeText.h"

#include <utility>

namespace
{

constexpr std::size_t kUsualPieces = 4;

} // namespace

std::string ModuleDataWriter::SanitizeText(std::string text)
{
    return ::SanitizeText(std::move(text));
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
