#include "Comparison.h"

#include "OptionDiff.h"

#include <unordered_map>

namespace
{

ViewRow MakeRow(const BiosOption &option, std::size_t column, std::size_t columns)
{
    ViewRow row;
    row.option = &option;
    row.inColumns.resize(columns);
    row.inColumns[column] = &option;
    row.differsIn.resize(columns);
    return row;
}

/// Adds the options of a column to the rows of their names, or as new rows.
void AddColumn(const OptionTable &table, std::size_t column, std::size_t columns,
               std::unordered_map<std::string_view, std::size_t> &rowOfName, std::vector<ViewRow> &rows)
{
    for (const BiosOption &option : table.Options())
    {
        const auto [found, isNew] = rowOfName.try_emplace(option.name, rows.size());
        if (isNew || table.Find(option.name) != &option)
            rows.push_back(MakeRow(option, column, columns));
        else
            rows[found->second].inColumns[column] = &option;
    }
}

bool IsMissingSomewhere(const ViewRow &row)
{
    for (const BiosOption *const option : row.inColumns)
    {
        if (!option)
            return true;
    }
    return false;
}

void Judge(ViewRow &row, Comparison &comparison)
{
    const BiosOption *const first = row.inColumns.front();
    for (std::size_t column = 1; column < row.inColumns.size(); ++column)
    {
        const BiosOption *const other = row.inColumns[column];
        if (first && other ? !AreKnownToDiffer(*first, *other) : first == other)
            continue;
        row.differsIn[column] = true;
        row.differs = true;
        ++comparison.differences[column];
    }
    comparison.differing += row.differs ? 1 : 0;
    comparison.added += first ? 0 : 1;
    comparison.removed += first && IsMissingSomewhere(row) ? 1 : 0;
}

} // namespace

Comparison Compare(const std::vector<ViewColumn> &columns)
{
    Comparison comparison;
    comparison.differences.resize(columns.size());
    std::unordered_map<std::string_view, std::size_t> rowOfName;
    for (std::size_t column = 0; column < columns.size(); ++column)
        AddColumn(*columns[column].table, column, columns.size(), rowOfName, comparison.rows);
    for (ViewRow &row : comparison.rows)
    {
        const BiosOption &option = *row.option;
        row.isAlone = &comparison.rows[rowOfName.at(option.name)] != &row;
        if (!row.isAlone)
            Judge(row, comparison);
    }
    return comparison;
}
