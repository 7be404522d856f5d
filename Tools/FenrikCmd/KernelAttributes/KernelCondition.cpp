#include "KernelCondition.h"

#include <algorithm>

namespace
{

struct ConditionWord
{
    std::string_view word;
    ConditionEffect effect;
    bool isNegated;
};

constexpr ConditionWord kWords[] = {
    {"ReadOnlyIf", ConditionEffect::ReadOnly, false}, {"ReadOnlyIfNot", ConditionEffect::ReadOnly, true},
    {"SuppressIf", ConditionEffect::Suppress, false}, {"SuppressIfNot", ConditionEffect::Suppress, true},
    {"ForceIf", ConditionEffect::Force, false},       {"ForceIfNot", ConditionEffect::Force, true}};

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// Takes what stands between brackets; nothing where it is of no known form.
std::optional<KernelCondition> ParsePart(std::string_view part, std::string_view forced)
{
    const std::size_t colon = part.find(':');
    const std::size_t equals = part.find('=', colon == std::string_view::npos ? part.size() : colon);
    const auto *const word =
        std::find_if(std::begin(kWords), std::end(kWords),
                     [&](const ConditionWord &known) { return known.word == part.substr(0, colon); });
    if (word == std::end(kWords) || equals == std::string_view::npos)
        return std::nullopt;
    return KernelCondition{word->effect, word->isNegated, std::string(part.substr(colon + 1, equals - colon - 1)),
                           std::string(part.substr(equals + 1)), std::string(forced)};
}

} // namespace

std::vector<KernelCondition> ParseConditions(std::string_view text)
{
    std::vector<KernelCondition> conditions;
    // The value that parts with Force are about: what stands in front of the first of them, behind a ";".
    std::string_view forced;
    while (!text.empty())
    {
        const std::size_t open = text.find('[');
        const std::size_t close = text.find(']', open == std::string_view::npos ? text.size() : open);
        if (close == std::string_view::npos)
            break;
        const std::string_view before = text.substr(0, open);
        if (!before.empty())
            forced = Trim(before.substr(before.rfind(';') + 1));
        std::optional<KernelCondition> condition = ParsePart(text.substr(open + 1, close - open - 1), forced);
        if (condition)
            conditions.push_back(std::move(*condition));
        text.remove_prefix(close + 1);
    }
    return conditions;
}

std::optional<bool> Holds(const KernelCondition &condition, const ValueOfSetting &valueOf)
{
    const std::optional<std::string> value = valueOf(condition.other);
    return value ? std::optional((*value == condition.value) != condition.isNegated) : std::nullopt;
}
