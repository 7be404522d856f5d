#include "ViewData.h"

#include "OptionText.h"
#include "OptionValue.h"
#include "OtherValues.h"
#include "Output.h"

#include <map>

namespace
{

constexpr OptionKind kKinds[] = {OptionKind::OneOf, OptionKind::CheckBox, OptionKind::Number, OptionKind::Text,
                                 OptionKind::Unknown};

std::string Dumped(const json &value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

void AddText(json &object, const char *name, std::string_view text)
{
    if (!text.empty())
        object[name] = text;
}

void AddFlag(json &object, const char *name, bool holds)
{
    if (holds)
        object[name] = true;
}

void AddValues(json &object, const ViewRow &row)
{
    const BiosOption *const first = row.inColumns.front();
    if (first)
        AddText(object, "value", ValueText(*first, first->currentValue));
    else
        object["value"] = nullptr;
    for (const OtherValue &other : OtherValuesOf(row))
        object["others"].push_back({other.option ? json(ValueText(*other.option, other.option->currentValue)) : json(),
                                    other.columns});
}

/// How a template assigns the value, where the script could not tell.
void AddLine(json &object, const ViewRow &row)
{
    const BiosOption *const first = row.inColumns.front();
    if (!first)
        return;
    const std::optional<std::string> line =
        first->isRedacted ? std::nullopt : WritableValue(*first, first->currentValue);
    if (!line)
        object["line"] = nullptr;
    else if (*line != ValueText(*first, first->currentValue))
        object["line"] = *line;
}

json OptionData(const ViewRow &row, std::size_t page)
{
    const BiosOption &option = *row.option;
    json object = {{"name", option.name}};
    AddText(object, "prompt", option.prompt);
    AddText(object, "help", option.help);
    object["page"] = page;
    object["kind"] = static_cast<std::size_t>(option.kind);
    if (option.condition != "TRUE")
        AddText(object, "condition", option.condition);
    AddValues(object, row);
    AddText(object, "default", ValueText(option, option.defaultValue));
    AddFlag(object, "changed", option.isChanged);
    AddFlag(object, "differs", row.differs);
    AddFlag(object, "odd", IsOdd(option));
    AddFlag(object, "redacted", option.isRedacted);
    for (const OptionChoice &choice : option.choices)
        object["choices"].push_back(choice.text);
    AddLine(object, row);
    return object;
}

json Heads(const ViewContent &content)
{
    json heads = {{"columns", json::array()}, {"pages", json::array()}, {"kinds", json::array()}};
    for (const ViewColumn &column : content.columns)
        heads["columns"].push_back(column.title);
    for (const ViewSection &section : content.sections)
        heads["pages"].push_back(section.path);
    for (const OptionKind kind : kKinds)
        heads["kinds"].push_back(KindName(kind));
    return heads;
}

} // namespace

std::string MakeViewData(const ViewContent &content)
{
    std::string data = Dumped(Heads(content));
    data.back() = ','; // in the place of its end
    data += "\"options\":[";
    bool isFirst = true;
    for (std::size_t page = 0; page < content.sections.size(); ++page)
    {
        for (const ViewRow *const row : content.sections[page].rows)
        {
            data += isFirst ? "\n" : ",\n";
            data += Dumped(OptionData(*row, page));
            isFirst = false;
        }
    }
    return data + "]}";
}
