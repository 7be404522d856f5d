#include "OptionText.h"

#include "OptionValue.h"

#include <cstdint>
#include <optional>

bool IsNoChoice(const BiosOption &option)
{
    return !option.isRedacted && option.unreadable.empty() && !option.choices.empty() &&
           !ChoiceOf(option, option.currentValue);
}

std::string DetailedValue(const BiosOption &option, std::string_view value)
{
    std::string text = ValueText(option, value);
    const std::optional<std::uint64_t> number = ValueNumber(option, value);
    if (option.isRedacted || !number || text == value)
        return text.empty() ? "(empty)" : text;
    return text + " (" + std::string(value) + ")";
}

std::string ValueRemark(const BiosOption &option)
{
    if (option.isRedacted)
        return "";
    if (IsNoChoice(option))
        return ", which is no choice";
    return option.isChanged ? ", changed" : "";
}

std::string SizeText(const BiosOption &option)
{
    if (option.size == 0)
        return "";
    return std::string(option.kind == OptionKind::Text ? ", at most " : ", ") + std::to_string(option.size) +
           (option.size == 1 ? " byte" : " bytes");
}

std::string LimitsText(const BiosOption &option)
{
    const OptionLimits &limits = option.limits;
    std::string text;
    const auto add = [&text](const char *word, const auto &limit)
    { text += limit ? word + std::to_string(*limit) : ""; };
    add(", from ", limits.minimum);
    add(limits.minimum ? " to " : ", at most ", limits.maximum);
    add(", in steps of ", limits.step);
    add(", at least ", limits.minLength);
    add(limits.minLength ? " and at most " : ", at most ", limits.maxLength);
    text += limits.minLength || limits.maxLength ? " characters" : "";
    return text + (option.isReadOnly ? ", read-only" : "");
}

std::string ConditionText(const BiosOption &option, const OptionTable &table)
{
    if (!option.state.empty())
        return std::string(option.condition) + (option.state == "hidden" ? ": hidden now" : ": locked now");
    if (option.condition == "TRUE")
        return "";
    const auto valueOf = [&](std::string_view name)
    {
        const BiosOption *const other = table.Find(name);
        return other && !other->isRedacted ? DumpNumber(other->currentValue) : std::nullopt;
    };
    const std::optional<bool> isMet = IsConditionMet(option.condition, valueOf);
    const char *const barred = option.condition.starts_with("Hide") ? ": hidden now" : ": grayed out now";
    return std::string(option.condition) + (!isMet ? "" : *isMet ? ": can be changed now" : barred);
}

std::string CsvCell(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos)
        return std::string(text);
    std::string cell = "\"";
    for (const char character : text)
        cell.append(character == '"' ? 2 : 1, character);
    return cell + "\"";
}

std::string OptionsAsCsv(const std::vector<const BiosOption *> &options)
{
    std::string text = "Name,Value,Prompt,Page,Default,Changed\n";
    for (const BiosOption *const option : options)
    {
        const std::string cells[] = {std::string(option->name),
                                     CurrentText(*option),
                                     std::string(option->prompt),
                                     std::string(option->page),
                                     ValueText(*option, option->defaultValue),
                                     option->isChanged ? "yes" : "no"};
        for (const std::string &cell : cells)
            text.append(&cell == &cells[0] ? "" : ",").append(CsvCell(cell));
        text += "\n";
    }
    return text;
}
