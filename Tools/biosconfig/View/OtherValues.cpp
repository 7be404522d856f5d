#include "OtherValues.h"

#include "OptionText.h"
#include "OptionValue.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace
{

/// The text of a value; nothing where there is no option.
std::optional<std::string> ShownValue(const BiosOption *option)
{
    return option ? std::optional(CurrentText(*option)) : std::nullopt;
}

} // namespace

std::vector<OtherValue> OtherValuesOf(const ViewRow &row)
{
    std::vector<OtherValue> values;
    std::map<std::pair<std::optional<std::string>, bool>, std::size_t> places;
    const std::optional<std::string> first = ShownValue(row.inColumns.front());
    for (std::size_t column = 1; column < row.inColumns.size(); ++column)
    {
        const BiosOption *const option = row.inColumns[column];
        const std::optional<std::string> text = ShownValue(option);
        const bool differs = row.differsIn[column];
        if ((text == first && !differs) || (row.isAlone && !option))
            continue;
        const auto [place, isNew] = places.try_emplace({text, differs}, values.size());
        if (isNew)
            values.push_back({option, differs, {}});
        values[place->second].columns.push_back(column);
    }
    return values;
}

bool IsOdd(const BiosOption &option)
{
    return !option.isRedacted && (option.currentValue.empty() || IsNoChoice(option));
}
