#pragma once

#include "OptionTable.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// What the values of options mean, to people and to the external tool. Nothing here reads or writes anything.

/// The number that a dump means by `text`: hexadecimal, with or without "0x". Nothing where it is none of 64 bits.
std::optional<std::uint64_t> DumpNumber(std::string_view text);

/// The number that a person means by `text`: hexadecimal with "0x", else decimal.
std::optional<std::uint64_t> WrittenNumber(std::string_view text);

/// Whether two values of a dump are one to `option`, by their numbers where it has numbers.
bool IsSameValue(const BiosOption &option, std::string_view left, std::string_view right);

/// The choice that has the value `value`, or null.
const OptionChoice *ChoiceOf(const BiosOption &option, std::string_view value);

/// What people call a value: the choice's text; a number in decimal; "0x5" where it is none of the choices; the text.
/// "(redacted)" for a redacted option.
std::string ValueText(const BiosOption &option, std::string_view value);

/// What people call the current value: as ValueText, or "(unreadable)" where the machine did not tell it.
std::string CurrentText(const BiosOption &option);

/// The number of a value, where it is one. Nothing for a redacted option.
std::optional<std::uint64_t> ValueNumber(const BiosOption &option, std::string_view value);

/// What a person's value means to an option.
struct JudgedValue
{
    /// As the external tool is to get it: a choice's text, a number as it was written, a text.
    std::string forTool;
    /// As a dump has it.
    std::string inDump;
    /// Why the option cannot take it, a sentence without its full stop; empty when it can.
    std::string problem;
};

/// Judges `value` as it stands in a template, without blanks around it. A choice's text comes first, then one that
/// differs in letter case alone if it is the only one, then a choice's number. Takes any value where the dump does not
/// say what the option takes. For a redacted option the problem names no value.
JudgedValue JudgeValue(const BiosOption &option, std::string_view value);

/// How to write the value `value` of a dump so that a template or a knob file gives it to the external tool. Nothing
/// where it cannot be written there.
std::optional<std::string> WritableValue(const BiosOption &option, std::string_view value);

/// Whether an option can be changed now as far as its condition tells: one of the form "GrayIf(Name == 0x0)" or HideIf,
/// with == != < <= > >=, whose option `currentValue` knows (it gives the value of the option of that name, or nothing).
/// Nothing for every other one.
template <typename CurrentValue>
std::optional<bool> IsConditionMet(std::string_view condition, CurrentValue currentValue);

/// Why the conditions of `option` that a driver of a real machine gives ("[ReadOnlyIf:Other=Value]",
/// "[SuppressIfNot:Other=Value]", "Own[ForceIf:Other=Value]") bar the value `value` of a dump; empty where they do not,
/// or where they cannot be judged. `textOf` gives the text of the value of the option of a name, or nothing.
std::string BarringRule(const BiosOption &option, std::string_view value,
                        const std::function<std::optional<std::string>(std::string_view name)> &textOf);

/// The parts of such a condition.
struct OptionCondition
{
    std::string_view name;
    std::string_view comparison;
    std::uint64_t number = 0;
};

/// Nothing where the condition is of another form.
std::optional<OptionCondition> ParseCondition(std::string_view condition);

/// Whether `number` makes the condition gray the option out or hide it.
bool IsBarred(const OptionCondition &condition, std::uint64_t number);

template <typename CurrentValue>
std::optional<bool> IsConditionMet(std::string_view condition, CurrentValue currentValue)
{
    const std::optional<OptionCondition> parsed = ParseCondition(condition);
    if (!parsed)
        return std::nullopt;
    const std::optional<std::uint64_t> number = currentValue(parsed->name);
    return number ? std::optional(!IsBarred(*parsed, *number)) : std::nullopt;
}
