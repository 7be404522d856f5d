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
        AddText(object, "value", CurrentText(*first));
    else
        object["value"] = nullptr;
    for (const OtherValue &other : OtherValuesOf(row))
        object["others"].push_back(
            {other.option ? json(CurrentText(*other.option)) : json(), other.columns, other.differs});
}

/// How a template assigns the value, where the script could not tell.
void AddLine(json &object, const ViewRow &row)
{
    const BiosOption *const first = row.inColumns.front();
    if (!first)
        return;
    const std::optional<std::string> line =
        first->isRedacted || !first->unreadable.empty() ? std::nullopt : WritableValue(*first, first->currentValue);
    if (!line)
        object["line"] = nullptr;
    else if (*line != CurrentText(*first))
        object["line"] = *line;
}

/// Most lists of choices are those of many options.
class ChoiceLists
{
public:
    std::size_t PlaceOf(const BiosOption &option)
    {
        json texts = json::array();
        for (const OptionChoice &choice : option.choices)
            texts.push_back(choice.text);
        const auto [found, isNew] = m_places.try_emplace(Dumped(texts), m_lists.size());
        if (isNew)
            m_lists.push_back(&found->first);
        return found->second;
    }

    std::string Text() const
    {
        std::string text = "[";
        for (const std::string *const list : m_lists)
            text.append(text.size() > 1 ? ",\n" : "").append(*list);
        return text + "]";
    }

private:
    std::map<std::string, std::size_t> m_places;
    std::vector<const std::string *> m_lists;
};

json OptionData(const ViewRow &row, std::size_t page, ChoiceLists &choiceLists)
{
    const BiosOption &option = *row.option;
    json object = {{"name", option.name}};
    object["page"] = page;
    object["kind"] = static_cast<std::size_t>(option.kind);
    AddValues(object, row);
    AddText(object, "default", ValueText(option, option.defaultValue));
    AddFlag(object, "changed", option.isChanged);
    AddFlag(object, "differs", row.differs);
    AddFlag(object, "odd", IsOdd(option));
    AddFlag(object, "redacted", option.isRedacted);
    if (!option.choices.empty())
        object["choices"] = choiceLists.PlaceOf(option);
    AddLine(object, row);
    return object;
}

json Heads(const ViewContent &content)
{
    json heads = {
        {"columns", json::array()}, {"pages", json::array()}, {"kinds", json::array()}, {"places", json::array()}};
    for (const ViewColumn &column : content.columns)
        heads["columns"].push_back(column.title);
    for (const ViewSection &section : content.sections)
    {
        heads["pages"].push_back(section.path);
        for (const ViewRow *const row : section.rows)
            heads["places"].push_back(row - content.comparison.rows.data());
    }
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
    ChoiceLists choiceLists;
    for (std::size_t page = 0; page < content.sections.size(); ++page)
    {
        for (const ViewRow *const row : content.sections[page].rows)
        {
            data += isFirst ? "\n" : ",\n";
            data += Dumped(OptionData(*row, page, choiceLists));
            isFirst = false;
        }
    }
    return data + "],\n\"choiceLists\":" + choiceLists.Text() + "}";
}
