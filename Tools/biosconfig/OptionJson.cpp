#include "OptionJson.h"

#include "OptionText.h"
#include "OptionValue.h"

namespace
{

/// Puts a text in where there is one.
void AddText(json &object, const char *name, std::string_view text)
{
    if (!text.empty())
        object[name] = text;
}

void AddValue(json &object, const char *name, const BiosOption &option, std::string_view value)
{
    if (!option.isRedacted)
        object[name] = ValueJson(option, value);
}

} // namespace

json ValueJson(const BiosOption &option, std::string_view value)
{
    if (option.isRedacted)
        return nullptr;
    json object = {{"text", ValueText(option, value)}};
    const std::optional<std::uint64_t> number = ValueNumber(option, value);
    if (number)
        object["number"] = *number;
    return object;
}

json OptionJson(const BiosOption &option)
{
    json object = {{"name", option.name}};
    AddText(object, "prompt", option.prompt);
    AddText(object, "help", option.help);
    AddText(object, "page", option.page);
    object["kind"] = KindName(option.kind);
    if (option.size != 0)
        object["size"] = option.size;
    AddText(object, "condition", option.condition);
    AddValue(object, "value", option, option.currentValue);
    if (HasDefault(option))
    {
        AddValue(object, "default", option, option.defaultValue);
        object["changed"] = option.isChanged;
    }
    if (option.pendingValue)
        AddValue(object, "pending", option, *option.pendingValue);
    if (!option.choices.empty())
        object["choices"] = json::array();
    for (const OptionChoice &choice : option.choices)
    {
        json described = {{"text", choice.text}};
        const std::optional<std::uint64_t> number = DumpNumber(choice.value);
        if (number)
            described["number"] = *number;
        object["choices"].push_back(std::move(described));
    }
    if (option.isRedacted)
        object["redacted"] = true;
    return object;
}

json ChangeJson(const OptionChange &change)
{
    const BiosOption &option = change.option;
    json object = {{"name", option.name}, {"change", ChangeName(change.kind)}};
    AddText(object, "prompt", option.prompt);
    AddText(object, "page", option.page);
    if (change.before)
        AddValue(object, "old", *change.before, change.OldValue());
    if (change.after)
        AddValue(object, "new", *change.after, change.NewValue());
    if (option.isRedacted)
        object["redacted"] = true;
    return object;
}

json PlannedJson(const PlannedChange &change, const Verdict *verdict)
{
    const BiosOption &option = *change.option;
    json object = {{"name", option.name}};
    AddText(object, "prompt", option.prompt);
    AddText(object, "page", option.page);
    AddValue(object, "old", option, option.currentValue);
    AddValue(object, "new", option, change.newValue);
    object["toProgram"] = change.isToDo;
    if (change.place.line != 0)
        object["line"] = change.place.line;
    if (verdict)
        object["verdict"] = VerdictName(*verdict);
    if (option.isRedacted)
        object["redacted"] = true;
    return object;
}
