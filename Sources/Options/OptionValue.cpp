#include "OptionValue.h"

#include "LowerAscii.h"
#include "Redaction.h"

#include <algorithm>
#include <charconv>

namespace
{

constexpr std::uint32_t kBitsOfByte = 8;
constexpr std::uint32_t kBitsOfNumber = 64;
constexpr std::size_t kMostChoicesTold = 12;
/// What ends a value in a template or in a knob file.
constexpr std::string_view kEndsAValue("\r\n;\0", 4);
constexpr std::string_view kBlanks = " \t";

std::optional<std::uint64_t> ParseNumber(std::string_view digits, int base)
{
    std::uint64_t number = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}

bool TakeHexPrefix(std::string_view &text)
{
    const bool has = text.starts_with("0x") || text.starts_with("0X");
    if (has)
        text.remove_prefix(2);
    return has;
}

bool HasChoices(const BiosOption &option)
{
    return !option.choices.empty();
}

bool HasNumbers(const BiosOption &option)
{
    return option.kind != OptionKind::Text && (HasChoices(option) || option.kind != OptionKind::Unknown);
}

std::string HexText(std::uint64_t number)
{
    char digits[16];
    char *const end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    std::transform(digits, end, digits,
                   [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
    return "0x" + std::string(digits, end);
}

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

/// `value` for a message, where the option's values may be told.
std::string Named(const BiosOption &option, std::string_view value)
{
    return option.isRedacted ? "the value" : Quoted(value);
}

std::string ChoicesText(const BiosOption &option)
{
    std::string list;
    for (std::size_t index = 0; index < std::min(option.choices.size(), kMostChoicesTold); ++index)
        list.append(index == 0 ? "" : ", ").append(option.choices[index].text);
    return option.choices.size() > kMostChoicesTold ? list + ", ..." : list;
}

/// The choice whose text is `value`, or is but for letter case, if it is the only one; null otherwise.
const OptionChoice *FindByText(const BiosOption &option, std::string_view value)
{
    const auto exact = std::find_if(option.choices.begin(), option.choices.end(),
                                    [&](const OptionChoice &choice) { return choice.text == value; });
    if (exact != option.choices.end())
        return &*exact;
    const std::string lower = LowerAscii(std::string(value));
    const OptionChoice *found = nullptr;
    for (const OptionChoice &choice : option.choices)
    {
        if (LowerAscii(std::string(choice.text)) != lower)
            continue;
        if (found)
            return nullptr;
        found = &choice;
    }
    return found;
}

JudgedValue JudgeChoice(const BiosOption &option, std::string_view value)
{
    const OptionChoice *choice = FindByText(option, value);
    if (choice)
        return {std::string(choice->text), std::string(choice->value), ""};
    const std::optional<std::uint64_t> number = WrittenNumber(value);
    if (number)
        choice = ChoiceOf(option, HexText(*number));
    if (choice)
        return {std::string(value), std::string(choice->value), ""};
    return {"", "", Named(option, value) + " is no choice; there are: " + ChoicesText(option)};
}

std::optional<std::int64_t> WrittenSignedNumber(std::string_view text)
{
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
    const bool isNegative = text.starts_with('-');
    const std::optional<std::uint64_t> number = WrittenNumber(text.substr(isNegative ? 1 : 0));
    if (!number || *number > kMostNegative - (isNegative ? 0 : 1))
        return std::nullopt;
    return static_cast<std::int64_t>(isNegative ? 0 - *number : *number);
}

/// Why the limits bar `number`; empty where they do not.
std::string LimitProblem(const BiosOption &option, std::int64_t number)
{
    const OptionLimits &limits = option.limits;
    const std::int64_t start = limits.minimum.value_or(0);
    const std::string named = Named(option, std::to_string(number));
    if (limits.minimum && number < *limits.minimum)
        return named + " is too small; the smallest number is " + std::to_string(*limits.minimum);
    if (limits.maximum && number > *limits.maximum)
        return named + " is too large; the largest number is " + std::to_string(*limits.maximum);
    const std::uint64_t distance = static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(start);
    if (limits.step && (number < start ? 0 - distance : distance) % *limits.step != 0)
        return named + " is between two steps; they are " + std::to_string(*limits.step) + " apart, from " +
               std::to_string(start) + " on";
    return "";
}

JudgedValue JudgeSigned(const BiosOption &option, std::string_view value)
{
    const std::optional<std::int64_t> number = WrittenSignedNumber(value);
    if (!number)
        return {"", "", Named(option, value) + " is not a number; write it in decimal, or in hexadecimal with 0x"};
    const std::string problem = LimitProblem(option, *number);
    if (!problem.empty())
        return {"", "", problem};
    return {std::string(value), *number < 0 ? std::to_string(*number) : HexText(static_cast<std::uint64_t>(*number)),
            ""};
}

JudgedValue JudgeNumber(const BiosOption &option, std::string_view value)
{
    if (option.isSigned)
        return JudgeSigned(option, value);
    const std::optional<std::uint64_t> number = WrittenNumber(value);
    if (!number)
        return {"", "", Named(option, value) + " is not a number; write it in decimal, or in hexadecimal with 0x"};
    const std::uint64_t bits = option.size * kBitsOfByte;
    if (bits > 0 && bits < kBitsOfNumber && (*number >> bits) != 0)
        return {"", "",
                Named(option, value) + " is too large; the largest number is " +
                    std::to_string((std::uint64_t{1} << bits) - 1)};
    return {std::string(value), HexText(*number), ""};
}

/// The length of the well-formed UTF-8 sequence in front of `text`; 0 where there is none.
std::size_t SequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t index = 1; index < length; ++index)
    {
        if ((byte(index) & 0xC0U) != 0x80)
            return 0;
    }
    const bool isOverlong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90);
    const bool isNoCharacter = (first == 0xED && byte(1) >= 0xA0) || (first == 0xF4 && byte(1) >= 0x90);
    return isOverlong || isNoCharacter ? 0 : length;
}

bool IsPrintableUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = SequenceLength(text);
        if (length == 0 || static_cast<unsigned char>(text.front()) < ' ')
            return false;
        text.remove_prefix(length);
    }
    return true;
}

JudgedValue JudgeText(const BiosOption &option, std::string_view value)
{
    if (option.size > 0 && value.size() > option.size)
        return {"", "",
                "the text has " + std::to_string(value.size()) + " bytes; the longest has " +
                    std::to_string(option.size)};
    if (!IsPrintableUtf8(value))
        return {"", "", "the text is not printable UTF-8"};
    const auto length = static_cast<std::uint64_t>(std::count_if(
        value.begin(), value.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }));
    const std::uint64_t least = option.limits.minLength.value_or(0);
    if (length < least)
        return {"", "",
                "the text has " + std::to_string(length) + " characters; the shortest has " + std::to_string(least)};
    if (option.limits.maxLength && length > *option.limits.maxLength)
        return {"", "",
                "the text has " + std::to_string(length) + " characters; the longest has " +
                    std::to_string(*option.limits.maxLength)};
    return {std::string(value), std::string(value), ""};
}

std::string PlainText(const BiosOption &option, std::string_view value)
{
    const OptionChoice *const choice = ChoiceOf(option, value);
    if (choice)
        return std::string(choice->text);
    const std::optional<std::uint64_t> number =
        option.kind == OptionKind::Number && !HasChoices(option) ? DumpNumber(value) : std::nullopt;
    return number ? std::to_string(*number) : std::string(value);
}

} // namespace

std::optional<std::uint64_t> DumpNumber(std::string_view text)
{
    TakeHexPrefix(text);
    return ParseNumber(text, 16);
}

std::optional<std::uint64_t> WrittenNumber(std::string_view text)
{
    const bool isHex = TakeHexPrefix(text);
    return ParseNumber(text, isHex ? 16 : 10);
}

bool IsSameValue(const BiosOption &option, std::string_view left, std::string_view right)
{
    if (left == right || !HasNumbers(option))
        return left == right;
    const std::optional<std::uint64_t> number = DumpNumber(left);
    return number && number == DumpNumber(right);
}

const OptionChoice *ChoiceOf(const BiosOption &option, std::string_view value)
{
    const auto found =
        std::find_if(option.choices.begin(), option.choices.end(),
                     [&](const OptionChoice &choice) { return IsSameValue(option, choice.value, value); });
    return found == option.choices.end() ? nullptr : &*found;
}

std::string ValueText(const BiosOption &option, std::string_view value)
{
    return option.isRedacted ? std::string(kRedacted) : PlainText(option, value);
}

std::string CurrentText(const BiosOption &option)
{
    return option.unreadable.empty() || option.isRedacted ? ValueText(option, option.currentValue) : "(unreadable)";
}

std::optional<std::uint64_t> ValueNumber(const BiosOption &option, std::string_view value)
{
    return !option.isRedacted && HasNumbers(option) ? DumpNumber(value) : std::nullopt;
}
JudgedValue JudgeValue(const BiosOption &option, std::string_view value)
{
    JudgedValue judged;
    if (HasChoices(option))
        judged = JudgeChoice(option, value);
    else if (option.kind == OptionKind::Number)
        judged = JudgeNumber(option, value);
    else if (option.kind == OptionKind::Text)
        judged = JudgeText(option, value);
    else
        judged = {std::string(value), std::string(value), ""};
    if (judged.problem.empty() && judged.forTool.find_first_of(kEndsAValue) != std::string::npos)
        judged.problem = Named(option, value) + " cannot be handed to the tool: it holds a \";\" or a line break";
    return judged;
}

std::optional<std::string> WritableValue(const BiosOption &option, std::string_view value)
{
    const auto isWritable = [&](std::string_view text)
    {
        const bool hasBlanksAround = !text.empty() && (kBlanks.find(text.front()) != std::string_view::npos ||
                                                       kBlanks.find(text.back()) != std::string_view::npos);
        // A second "=" in front would be taken for a part of the "==" of a knob file.
        return !hasBlanksAround && !text.starts_with('=') && text.find_first_of(kEndsAValue) == std::string_view::npos;
    };
    const auto means = [&](std::string_view text)
    {
        const JudgedValue judged = JudgeValue(option, text);
        return judged.problem.empty() && IsSameValue(option, judged.inDump, value);
    };
    for (const std::string &text : {PlainText(option, value), std::string(value)})
    {
        if (isWritable(text) && means(text))
            return text;
    }
    return std::nullopt;
}

std::optional<OptionCondition> ParseCondition(std::string_view condition)
{
    constexpr std::string_view kForms[] = {"GrayIf(", "HideIf("};
    const auto *const form = std::find_if(std::begin(kForms), std::end(kForms),
                                          [&](std::string_view begin) { return condition.starts_with(begin); });
    if (form == std::end(kForms) || !condition.ends_with(')'))
        return std::nullopt;
    condition = condition.substr(form->size(), condition.size() - form->size() - 1);
    const std::size_t nameEnd = condition.find(' ');
    const std::size_t comparisonEnd = condition.rfind(' ');
    if (nameEnd == std::string_view::npos || nameEnd == comparisonEnd)
        return std::nullopt;
    const std::optional<std::uint64_t> number = WrittenNumber(condition.substr(comparisonEnd + 1));
    if (!number)
        return std::nullopt;
    const OptionCondition parsed = {condition.substr(0, nameEnd),
                                    condition.substr(nameEnd + 1, comparisonEnd - nameEnd - 1), *number};
    constexpr std::string_view kComparisons[] = {"==", "!=", "<", "<=", ">", ">="};
    const bool isKnown =
        std::find(std::begin(kComparisons), std::end(kComparisons), parsed.comparison) != std::end(kComparisons);
    return isKnown ? std::optional(parsed) : std::nullopt;
}

bool IsBarred(const OptionCondition &condition, std::uint64_t number)
{
    const std::string_view comparison = condition.comparison;
    const bool isEqual = number == condition.number;
    if (comparison == "!=")
        return !isEqual;
    const bool mayBeEqual = comparison.ends_with('=');
    const bool isBeyond = comparison.starts_with('<')   ? number < condition.number
                          : comparison.starts_with('>') ? number > condition.number
                                                        : false;
    return isBeyond || (mayBeEqual && isEqual);
}

namespace
{

struct RuleWord
{
    std::string_view word;
    /// What it makes of the option, for a message.
    std::string_view effect;
    bool isForcing;
    bool isNegated;
};

constexpr RuleWord kRuleWords[] = {
    {"ReadOnlyIf:", "is locked", false, false}, {"ReadOnlyIfNot:", "is locked", false, true},
    {"SuppressIf:", "is hidden", false, false}, {"SuppressIfNot:", "is hidden", false, true},
    {"ForceIf:", "has to be ", true, false},    {"ForceIfNot:", "has to be ", true, true}};

/// One rule of a condition. All are parts of its text.
struct Rule
{
    const RuleWord *word;
    std::string_view name;
    std::string_view value;
};

/// Takes what stands between brackets; nothing where it is of no known form.
std::optional<Rule> ParseRule(std::string_view text)
{
    const auto *const word = std::find_if(std::begin(kRuleWords), std::end(kRuleWords),
                                          [&](const RuleWord &known) { return text.starts_with(known.word); });
    const std::size_t equals = text.find('=');
    if (word == std::end(kRuleWords) || equals == std::string_view::npos)
        return std::nullopt;
    return Rule{word, text.substr(word->word.size(), equals - word->word.size()), text.substr(equals + 1)};
}

std::string_view TrimBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

} // namespace

std::string BarringRule(const BiosOption &option, std::string_view value,
                        const std::function<std::optional<std::string>(std::string_view name)> &textOf)
{
    std::string_view condition = option.condition;
    // The value that a forcing rule is about stands in front of the first of its rules.
    std::string_view forced;
    while (!condition.empty())
    {
        const std::size_t open = std::min(condition.find('['), condition.size());
        const std::size_t close = condition.find(']', open);
        if (close == std::string_view::npos)
            break;
        const std::string_view before = condition.substr(0, open);
        if (!before.empty())
            forced = TrimBlanks(before.substr(before.rfind(';') + 1));
        const std::optional<Rule> rule = ParseRule(condition.substr(open + 1, close - open - 1));
        condition.remove_prefix(close + 1);
        if (!rule || (rule->word->isForcing && PlainText(option, value) == forced))
            continue;
        const std::optional<std::string> text = textOf(rule->name);
        if (!text || (*text == rule->value) == rule->word->isNegated)
            continue;
        return "the option " + std::string(rule->word->effect) + (rule->word->isForcing ? Quoted(forced) : "") +
               " while " + std::string(rule->name) + (rule->word->isNegated ? " is not " : " is ") +
               Quoted(rule->value);
    }
    return "";
}
