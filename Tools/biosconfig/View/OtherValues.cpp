#include "OtherValues.h"

#include "OptionText.h"
#include "OptionValue.h"

#include <string>
#include <unordered_map>

std::vector<OtherValue> OtherValuesOf(const ViewRow &row)
{
    std::vector<OtherValue> values;
    if (!row.differs)
        return values;
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t column = 1; column < row.inColumns.size(); ++column)
    {
        if (!row.differsIn[column])
            continue;
        const BiosOption *const option = row.inColumns[column];
        // No text begins like this: one that is missing has a place of its own.
        const std::string key = option ? "=" + ValueText(*option, option->currentValue) : "";
        const auto [place, isNew] = places.try_emplace(key, values.size());
        if (isNew)
            values.push_back({option, {}});
        values[place->second].columns.push_back(column);
    }
    return values;
}

bool IsOdd(const BiosOption &option)
{
    return !option.isRedacted && (option.currentValue.empty() || IsNoChoice(option));
}
