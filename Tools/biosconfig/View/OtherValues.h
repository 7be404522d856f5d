#pragma once

#include "Comparison.h"

#include <cstddef>
#include <vector>

/// What an option has in some columns, shown as another text than what it has in the first one.
struct OtherValue
{
    /// One that has it; null: these columns lack the option.
    const BiosOption *option = nullptr;
    /// Whether it is known to be another value, too: a redacted one is not, nor a number that has another name.
    bool differs = false;
    /// In ascending order.
    std::vector<std::size_t> columns;
};

/// The other values of a row, in the order of their first columns.
std::vector<OtherValue> OtherValuesOf(const ViewRow &row);

/// Whether the option's value is empty, or none of its choices.
bool IsOdd(const BiosOption &option);
