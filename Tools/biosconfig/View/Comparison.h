#pragma once

#include "OptionTable.h"

#include <cstddef>
#include <string>
#include <vector>

/// One machine, or one file, of a page.
struct ViewColumn
{
    /// What people are to call it, UTF-8.
    std::string title;
    const OptionTable *table = nullptr;
};

/// One option of a page. Refers to the tables' options.
struct ViewRow
{
    /// What describes it: the option of the first column that has it.
    const BiosOption *option = nullptr;
    /// By column; null where the column has no option of that name. Duplicates of a name stand alone in their column.
    std::vector<const BiosOption *> inColumns;
    /// By column, whether it is known to have another value than the first column, or only one of the two has the
    /// option.
    std::vector<bool> differsIn;
    bool differs = false;
    /// It is a duplicate, and says nothing of other columns.
    bool isAlone = false;
};

/// All options of several columns, side by side.
struct Comparison
{
    /// In the order of the first column, then what others have beyond it, in theirs.
    std::vector<ViewRow> rows;
    std::size_t differing = 0;
    /// Rows that some other column lacks, and those that the first one lacks.
    std::size_t removed = 0;
    std::size_t added = 0;
    /// By column.
    std::vector<std::size_t> differences;
};

/// Pairs the options of the columns by name. Of several with one name in a table the first counts; further ones get
/// rows of their own, which differ from nothing. Linear in the options of all columns. To be called before values are
/// taken out (Redaction.h).
Comparison Compare(const std::vector<ViewColumn> &columns);
