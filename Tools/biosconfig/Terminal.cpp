#include "Terminal.h"

#include "Platform.h"
#include "Program.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace
{

constexpr std::size_t kUsualColumns = 80;
constexpr std::string_view kGap = "  ";
constexpr std::string_view kCutMark = "\u2026";

/// In the order of Look.
constexpr std::string_view kSequences[] = {"",        "\x1b[1m",  "\x1b[36m",   "\x1b[1;33m", "\x1b[2m",
                                           "\x1b[7m", "\x1b[32m", "\x1b[1;31m", "\x1b[33m"};
constexpr std::string_view kEndOfSequence = "\x1b[0m";

struct CharacterRange
{
    std::uint32_t first;
    std::uint32_t last;
};

/// Marks that combine with the character in front of them, and characters without a width.
constexpr CharacterRange kNarrow[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
                                      {0x064B, 0x065F}, {0x0900, 0x0902}, {0x093A, 0x093A}, {0x0E31, 0x0E31},
                                      {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
                                      {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
/// East Asian wide characters and pictures.
constexpr CharacterRange kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0x33FF}, {0x3400, 0x4DBF},
                                    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},  {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                                    {0xFE30, 0xFE4F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
                                    {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t Count>
bool IsIn(const CharacterRange (&ranges)[Count], std::uint32_t character)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [character](const CharacterRange &range)
                       { return character >= range.first && character <= range.last; });
}

/// Takes a character off the front of `text`; a byte that begins none counts as one.
std::string_view TakeCharacter(std::string_view &text, std::uint32_t &character)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byte(0);
    std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    length = std::min(length, text.size());
    character = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index)
        character = (character << 6U) | (byte(index) & 0x3FU);
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

std::size_t ColumnsOf(std::uint32_t character)
{
    if (character < 0x300)
        return 1;
    return IsIn(kNarrow, character) ? 0 : IsIn(kWide, character) ? 2 : 1;
}

bool IsControl(std::uint32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

} // namespace

Terminal::Terminal(std::FILE *stream, ColorWish wish)
{
    std::string value;
    if (Platform::IsTerminal(stream))
    {
        m_columns = Platform::TerminalColumns(stream);
        if (m_columns == 0 && Platform::ReadEnvironmentVariable("COLUMNS", value))
            m_columns = std::strtoul(value.c_str(), nullptr, 10);
        m_columns = m_columns == 0 ? kUsualColumns : m_columns;
    }
    const bool isDeclined = Platform::ReadEnvironmentVariable("NO_COLOR", value);
    const bool understands = Platform::EnableEscapeSequences(stream);
    m_hasColor = wish == ColorWish::Always || (wish == ColorWish::Auto && understands && !isDeclined);
}

std::string Terminal::Style(Look look, std::string_view text) const
{
    if (!m_hasColor || look == Look::Plain || text.empty())
        return std::string(text);
    std::string styled(kSequences[static_cast<std::size_t>(look)]);
    return styled.append(text).append(kEndOfSequence);
}

std::size_t ColumnsOf(std::string_view text)
{
    std::size_t columns = 0;
    while (!text.empty())
    {
        std::uint32_t character = 0;
        TakeCharacter(text, character);
        columns += ColumnsOf(character);
    }
    return columns;
}

std::string CutToFit(std::string_view text, std::size_t columns)
{
    if (text.size() <= columns || ColumnsOf(text) <= columns)
        return std::string(text);
    std::string cut;
    std::size_t used = 1; // the mark's
    while (!text.empty())
    {
        std::uint32_t character = 0;
        const std::string_view bytes = TakeCharacter(text, character);
        used += ColumnsOf(character);
        if (used > columns)
            break;
        cut += bytes;
    }
    return columns == 0 ? "" : cut.append(kCutMark);
}

std::string OneLine(std::string_view text)
{
    const auto isOrdinary = [](unsigned char byte) { return byte >= 0x20 && byte < 0x7F; };
    if (std::all_of(text.begin(), text.end(), isOrdinary))
        return std::string(text);
    std::string line;
    line.reserve(text.size());
    while (!text.empty())
    {
        std::uint32_t character = 0;
        const std::string_view bytes = TakeCharacter(text, character);
        line += IsControl(character) ? " " : bytes;
    }
    return line;
}

std::vector<std::string> Wrap(std::string_view text, std::size_t columns)
{
    const std::string whole = OneLine(text);
    std::vector<std::string> lines(1);
    std::string_view rest = whole;
    while (!rest.empty())
    {
        const std::string_view word = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        if (word.empty())
            continue;
        const std::size_t used = ColumnsOf(lines.back());
        if (used != 0 && used + 1 + ColumnsOf(word) > columns)
            lines.emplace_back();
        lines.back().append(lines.back().empty() ? "" : " ").append(word);
    }
    return lines;
}

void TextTable::AddRow(std::vector<Cell> cells)
{
    for (Cell &cell : cells)
        cell.text = OneLine(cell.text);
    m_rows.push_back(std::move(cells));
}

std::vector<std::size_t> TextTable::Widths(const Terminal &terminal) const
{
    std::vector<std::size_t> widths(m_columns.size());
    for (std::size_t column = 0; column < m_columns.size(); ++column)
    {
        if (terminal.IsThere())
            widths[column] = ColumnsOf(m_columns[column].title);
        for (const std::vector<Cell> &row : m_rows)
            widths[column] = std::max(widths[column], ColumnsOf(row[column].text));
    }
    if (!terminal.IsThere())
        return widths;
    const std::size_t gaps = kGap.size() * (m_columns.size() - 1);
    const std::size_t wanted = std::accumulate(widths.begin(), widths.end(), gaps);
    std::size_t excess = wanted > terminal.Columns() ? wanted - terminal.Columns() : 0;
    for (std::size_t column = m_columns.size(); column-- > 0 && excess > 0;)
    {
        const std::size_t fewest = std::min(widths[column], m_columns[column].fewest);
        const std::size_t given = std::min(excess, widths[column] - fewest);
        widths[column] -= given;
        excess -= given;
    }
    return widths;
}

std::string TextTable::Text(const Terminal &terminal) const
{
    const std::vector<std::size_t> widths = Widths(terminal);
    std::string text;
    const auto addCell = [&](std::size_t column, std::string_view content, Look look)
    {
        const std::string shown = terminal.IsThere() ? CutToFit(content, widths[column]) : std::string(content);
        text += terminal.Style(look, shown);
        if (column + 1 < m_columns.size())
            text.append(widths[column] - std::min(widths[column], ColumnsOf(shown)), ' ').append(kGap);
    };
    const auto endLine = [&]
    {
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    };
    for (std::size_t column = 0; column < m_columns.size() && terminal.IsThere(); ++column)
        addCell(column, m_columns[column].title, Look::Head);
    if (terminal.IsThere())
        endLine();
    for (const std::vector<Cell> &row : m_rows)
    {
        for (std::size_t column = 0; column < m_columns.size(); ++column)
            addCell(column, row[column].text, row[column].look);
        endLine();
    }
    return text;
}
