#pragma once

#include "Arguments.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// Texts for people in front of a terminal. All texts are UTF-8.

/// What a part of the output is, and so what it looks like.
enum class Look
{
    Plain,
    Head,
    Name,
    Changed,
    Faint,
    Found,
    Good,
    Bad,
    Warning
};

/// How to write for whoever reads `stream`.
class Terminal
{
public:
    /// `columns` is asked of the terminal; without one nothing is cut and, unless it is wished for, nothing coloured.
    Terminal(std::FILE *stream, ColorWish wish);
    /// Nobody reads along: a file.
    Terminal() = default;

    bool IsThere() const { return m_columns != 0; }
    /// 0 where there is no terminal.
    std::size_t Columns() const { return m_columns; }

    /// `text` with the escape sequences of `look`, where there is colour.
    std::string Style(Look look, std::string_view text) const;

private:
    std::size_t m_columns = 0;
    bool m_hasColor = false;
};

/// How many columns a text takes on a terminal: none for marks that combine, two for wide characters.
std::size_t ColumnsOf(std::string_view text);

/// The part of `text` that fits into `columns`, with "…" at its end where something was cut off.
std::string CutToFit(std::string_view text, std::size_t columns);

/// `text` on one line: a blank for every control character, also those that would be commands to a terminal.
std::string OneLine(std::string_view text);

/// `text` in lines of at most `columns`, broken at blanks.
std::vector<std::string> Wrap(std::string_view text, std::size_t columns);

/// Lines with aligned columns.
class TextTable
{
public:
    struct Column
    {
        const char *title;
        /// On a terminal that is too narrow, columns are cut down to this, the last one first.
        std::size_t fewest;
    };
    struct Cell
    {
        std::string text;
        Look look = Look::Plain;
    };

    explicit TextTable(std::vector<Column> columns) : m_columns(std::move(columns)) {}

    /// One cell per column.
    void AddRow(std::vector<Cell> cells);

    bool IsEmpty() const { return m_rows.empty(); }

    /// The lines; with a head on a terminal, cut to its width.
    std::string Text(const Terminal &terminal) const;

private:
    std::vector<std::size_t> Widths(const Terminal &terminal) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<Cell>> m_rows;
};
