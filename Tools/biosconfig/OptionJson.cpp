#include "OptionJson.h"

#include "OptionText.h"
#include "OptionValue.h"

#include <charconv>

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

template <typename Number>
void AddNumber(json &object, const char *name, const std::optional<Number> &number)
{
    if (number)
        object[name] = *number;
}

/// What the dump of a real machine says.
void AddFurther(json &object, const BiosOption &option)
{
    AddNumber(object, "minimum", option.limits.minimum);
    AddNumber(object, "maximum", option.limits.maximum);
    AddNumber(object, "step", option.limits.step);
    AddNumber(object, "minLength", option.limits.minLength);
    AddNumber(object, "maxLength", option.limits.maxLength);
    AddText(object, "sourceKind", option.sourceKind);
    AddText(object, "state", option.state);
    AddText(object, "unreadable", option.unreadable);
    if (option.isReadOnly)
        object["readOnly"] = true;
}

/// The number of a negative value; nothing for any other.
std::optional<std::int64_t> NegativeNumber(const BiosOption &option, std::string_view value)
{
    std::int64_t number = 0;
    const char *const end = value.data() + value.size();
    const auto [stopped, error] = std::from_chars(value.data(), end, number);
    const bool isNegative = option.isSigned && value.starts_with('-') && error == std::errc() && stopped == end;
    return isNegative ? std::optional(number) : std::nullopt;
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
    AddNumber(object, "number", NegativeNumber(option, value));
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
    AddFurther(object, option);
    if (option.unreadable.empty())
        AddValue(object, "value", option, option.currentValue);
    if (option.hasDefault)
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
    if (option.unreadable.empty())
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
