#include "Dependencies.h"

#include "Number.h"

#include <algorithm>
#include <iterator>

namespace Redfish
{

namespace
{

constexpr std::string_view kCurrentValue = "CurrentValue";

/// The comparisons of a registry, with what they hold for: the left value less than, equal to, greater than the right.
struct Comparison
{
    std::string_view name;
    std::string_view sign;
    bool ofLess;
    bool ofEqual;
    bool ofGreater;
};

constexpr Comparison kComparisons[] = {
    {"EQU", "==", false, true, false}, {"NEQ", "!=", true, false, true}, {"GTR", ">", false, false, true},
    {"GEQ", ">=", false, true, true},  {"LSS", "<", true, false, false}, {"LEQ", "<=", true, true, false},
};

const Comparison *FindComparison(std::string_view name)
{
    const auto *const found = std::find_if(std::begin(kComparisons), std::end(kComparisons),
                                           [name](const Comparison &comparison) { return comparison.name == name; });
    return found == std::end(kComparisons) ? nullptr : found;
}

/// What can be true or false of an attribute, and what it is good for.
struct Flag
{
    std::string_view property;
    bool RegistryAttribute::*declared;
    /// How its dependencies begin: where it is set, and where it is not.
    const char *onText;
    const char *offText;
};

/// What hides comes first; all else locks.
constexpr Flag kFlags[] = {
    {"Hidden", &RegistryAttribute::isHidden, "HideIf", "HideUnless"},
    {"ReadOnly", &RegistryAttribute::isReadOnly, "GrayIf", "GrayUnless"},
    {"GrayOut", &RegistryAttribute::isGrayOut, "GrayIf", "GrayUnless"},
    {"Immutable", &RegistryAttribute::isImmutable, "GrayIf", "GrayUnless"},
};
constexpr std::size_t kFlagCount = std::size(kFlags);

const Flag *FindFlag(std::string_view property)
{
    const auto *const found = std::find_if(std::begin(kFlags), std::end(kFlags),
                                           [property](const Flag &flag) { return flag.property == property; });
    return found == std::end(kFlags) ? nullptr : found;
}

/// What else of an attribute can be compared.
struct Property
{
    std::string_view name;
    std::optional<std::int64_t> RegistryAttribute::*member;
};

constexpr Property kProperties[] = {
    {"LowerBound", &RegistryAttribute::lowerBound},
    {"UpperBound", &RegistryAttribute::upperBound},
    {"MinLength", &RegistryAttribute::minLength},
    {"MaxLength", &RegistryAttribute::maxLength},
    {"ScalarIncrement", &RegistryAttribute::scalarIncrement},
};

/// Nothing where the two cannot be compared.
std::optional<bool> Compare(const Comparison &comparison, const WireValue &left, const WireValue &right)
{
    const std::optional<std::int64_t> leftNumber = left.Number();
    const std::optional<std::int64_t> rightNumber = right.Number();
    if (leftNumber && rightNumber)
        return (*leftNumber < *rightNumber && comparison.ofLess) ||
               (*leftNumber == *rightNumber && comparison.ofEqual) ||
               (*leftNumber > *rightNumber && comparison.ofGreater);
    // Anything else has no order.
    if (comparison.ofLess != comparison.ofGreater || !left.HasText() || !right.HasText())
        return std::nullopt;
    return (left.text == right.text) == comparison.ofEqual;
}

/// Judges the dependencies of one registry one after the other.
class Judge
{
public:
    Judge(const Registry &registry, const CurrentValues &current)
        : m_registry(registry), m_current(current), m_mayHide(registry.attributes.size())
    {
        m_flags.resize(registry.attributes.size() * kFlagCount);
        for (std::size_t place = 0; place < m_flags.size(); ++place)
            m_flags[place] = registry.attributes[place / kFlagCount].*kFlags[place % kFlagCount].declared;
    }

    void Take(const RegistryDependency &dependency)
    {
        const Flag *const flag = FindFlag(dependency.property);
        const std::optional<std::size_t> target = m_registry.PlaceOf(dependency.attribute);
        if (!flag || !target || dependency.value.kind != WireKind::Boolean)
            return;
        if (flag == kFlags)
            m_mayHide[*target] = true;
        if (Holds(dependency) == true)
            m_flags[*target * kFlagCount + PlaceOf(flag)] = dependency.value.IsTrue();
    }

    Access AccessOf(std::size_t attribute) const
    {
        const auto first = m_flags.begin() + static_cast<std::ptrdiff_t>(attribute * kFlagCount);
        return {*first && m_mayHide[attribute],
                std::any_of(first + 1, first + kFlagCount, [](bool isSet) { return isSet; })};
    }

private:
    static std::size_t PlaceOf(const Flag *flag) { return static_cast<std::size_t>(flag - kFlags); }

    WireValue ValueOf(const RegistryCondition &condition) const
    {
        if (condition.property.empty() || condition.property == kCurrentValue)
        {
            const WireValue *const value = m_current(condition.attribute);
            return value ? *value : WireValue();
        }
        const std::optional<std::size_t> place = m_registry.PlaceOf(condition.attribute);
        if (!place)
            return {};
        if (const Flag *const flag = FindFlag(condition.property))
            return {WireKind::Boolean, m_flags[*place * kFlagCount + PlaceOf(flag)] ? "true" : "false"};
        const RegistryAttribute &attribute = m_registry.attributes[*place];
        if (condition.property == "DefaultValue")
            return attribute.defaultValue;
        const auto *const property =
            std::find_if(std::begin(kProperties), std::end(kProperties),
                         [&](const Property &known) { return known.name == condition.property; });
        const std::optional<std::int64_t> number =
            property == std::end(kProperties) ? std::nullopt : attribute.*property->member;
        return number ? WireValue{WireKind::Integer, std::to_string(*number)} : WireValue();
    }

    std::optional<bool> Holds(const RegistryCondition &condition) const
    {
        const Comparison *const comparison = FindComparison(condition.comparison);
        return comparison ? Compare(*comparison, ValueOf(condition), condition.value) : std::nullopt;
    }

    /// From the first condition to the last; what cannot be judged matters only where it decides.
    std::optional<bool> Holds(const RegistryDependency &dependency) const
    {
        if (dependency.conditions.empty())
            return std::nullopt;
        std::optional<bool> holds = Holds(dependency.conditions.front());
        for (auto next = dependency.conditions.begin() + 1; next != dependency.conditions.end(); ++next)
        {
            const std::optional<bool> nextHolds = Holds(*next);
            const bool deciding = next->terms == "OR";
            if (holds == deciding || nextHolds == deciding)
                holds = deciding;
            else if (!holds || !nextHolds)
                holds.reset();
        }
        return holds;
    }

    const Registry &m_registry;
    const CurrentValues &m_current;
    /// Of every attribute those of kFlags.
    std::vector<bool> m_flags;
    /// Of every attribute, whether a dependency decides if it is hidden.
    std::vector<bool> m_mayHide;
};

/// A value as a dump has it.
std::string ValueText(const RegistryAttribute *attribute, const WireValue &value)
{
    const std::optional<std::size_t> choice = attribute ? ChoiceNumber(*attribute, value) : std::nullopt;
    if (choice)
        return HexText(*choice);
    const std::optional<std::int64_t> number = value.kind == WireKind::Integer ? value.Number() : std::nullopt;
    if (number && *number >= 0)
        return HexText(static_cast<std::uint64_t>(*number));
    return value.kind == WireKind::String ? '"' + value.text + '"' : value.HasText() ? value.text : "none";
}

std::string ConditionText(const Registry &registry, const RegistryCondition &condition)
{
    const bool isOfValue = condition.property.empty() || condition.property == kCurrentValue;
    const RegistryAttribute *const attribute = registry.Find(condition.attribute);
    const Comparison *const comparison = FindComparison(condition.comparison);
    return condition.attribute + (isOfValue ? "" : '.' + condition.property) + ' ' +
           (comparison ? std::string(comparison->sign) : condition.comparison) + ' ' +
           ValueText(isOfValue ? attribute : nullptr, condition.value);
}

std::string DependencyText(const Registry &registry, const RegistryDependency &dependency)
{
    const Flag *const flag = FindFlag(dependency.property);
    const RegistryAttribute *const target = registry.Find(dependency.attribute);
    const bool isFlag = flag && dependency.value.kind == WireKind::Boolean;
    std::string text = isFlag ? (dependency.value.IsTrue() ? flag->onText : flag->offText)
                              : dependency.property + " = " + ValueText(target, dependency.value) + " If";
    text += '(';
    for (const RegistryCondition &condition : dependency.conditions)
    {
        if (&condition != &dependency.conditions.front())
            text += condition.terms == "OR" ? " or " : " and ";
        text += ConditionText(registry, condition);
    }
    return text + ')';
}

} // namespace

std::vector<Access> JudgeAccess(const Registry &registry, const CurrentValues &current)
{
    Judge judge(registry, current);
    for (const RegistryDependency &dependency : registry.dependencies)
        judge.Take(dependency);
    std::vector<Access> access;
    access.reserve(registry.attributes.size());
    for (std::size_t attribute = 0; attribute < registry.attributes.size(); ++attribute)
        access.push_back(judge.AccessOf(attribute));
    return access;
}

std::vector<std::string> DependencyTexts(const Registry &registry)
{
    std::vector<std::string> texts(registry.attributes.size());
    for (const RegistryDependency &dependency : registry.dependencies)
    {
        const std::optional<std::size_t> target = registry.PlaceOf(dependency.attribute);
        if (!target || dependency.conditions.empty())
            continue;
        std::string &text = texts[*target];
        text += (text.empty() ? "" : "; ") + DependencyText(registry, dependency);
    }
    return texts;
}

std::optional<std::size_t> ChoiceNumber(const RegistryAttribute &attribute, const WireValue &value)
{
    if (value.kind == WireKind::Boolean)
        return value.IsTrue() ? 1 : 0;
    if (!value.HasText())
        return std::nullopt;
    const auto found = std::find_if(attribute.choices.begin(), attribute.choices.end(),
                                    [&](const RegistryChoice &choice) { return choice.name == value.text; });
    if (found == attribute.choices.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - attribute.choices.begin());
}

} // namespace Redfish
