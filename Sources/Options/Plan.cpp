#include "Plan.h"

#include "OptionValue.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace
{

/// A nearest name takes a walk over all options; for more findings than this there is none.
constexpr int kMostNearestNames = 20;

/// The value that the option has, or will have behind the restart.
std::string_view EffectiveValue(const BiosOption &option)
{
    return option.pendingValue.value_or(option.currentValue);
}

bool StandsBefore(const Finding &left, const Finding &right)
{
    return std::tie(left.place.line, left.place.column) < std::tie(right.place.line, right.place.column);
}

/// Makes one plan.
class Planner
{
public:
    Planner(const OptionTable &table, TemplateContent content, TemplateKind kind)
        : m_table(table), m_content(std::move(content)), m_kind(kind)
    {
        m_plan.findings = std::move(m_content.findings);
    }

    Plan Make()
    {
        m_plan.changes.reserve(m_content.assignments.size());
        for (const TemplateAssignment &assignment : m_content.assignments)
            Take(assignment);
        for (const PlannedChange &change : m_plan.changes)
        {
            CheckCondition(change);
            CheckRules(change);
        }
        if (m_plan.IsSound() && m_plan.ToDo() == 0)
            Add(Severity::Note, {}, "nothing-to-do",
                m_plan.changes.empty() ? "nothing is assigned" : "every option has its value already");
        std::stable_sort(m_plan.findings.begin(), m_plan.findings.end(), StandsBefore);
        return std::move(m_plan);
    }

private:
    void Add(Severity severity, const TemplateAssignment &assignment, std::string_view code, std::string message)
    {
        m_plan.findings.push_back({severity, assignment.place, std::string(assignment.name), code, std::move(message)});
    }

    void Take(const TemplateAssignment &assignment)
    {
        const BiosOption *const option = m_table.Find(assignment.name);
        if (!option)
            return Add(Severity::Error, assignment, "unknown-option", UnknownText(assignment.name));
        JudgedValue judged = JudgeValue(*option, assignment.value);
        const bool isKnown = option->unreadable.empty();
        // What cannot be changed may be assigned as it is, whatever limits say.
        if (!judged.problem.empty() && option->isReadOnly && isKnown && assignment.value == option->currentValue)
            judged = {std::string(assignment.value), std::string(assignment.value), ""};
        if (!judged.problem.empty())
            return Add(Severity::Error, assignment, "invalid-value", judged.problem);
        const auto [earlier, isFirst] = m_first.emplace(assignment.name, m_plan.changes.size());
        if (!isFirst)
            return TakeAgain(assignment, *option, judged, m_plan.changes[earlier->second]);
        const bool isToDo = !isKnown || !IsSameValue(*option, judged.inDump, EffectiveValue(*option));
        if (isToDo && option->isReadOnly)
            return Add(Severity::Error, assignment, "read-only",
                       isKnown ? "the option is read-only" : "the option is read-only, and its value is not known");
        m_plan.changes.push_back(
            {option, std::move(judged.forTool), std::move(judged.inDump), isToDo, assignment.place});
    }

    void TakeAgain(const TemplateAssignment &assignment, const BiosOption &option, const JudgedValue &judged,
                   const PlannedChange &first)
    {
        const bool isSame = IsSameValue(option, judged.inDump, first.newValue);
        const std::string where = first.place.line == 0 ? "" : " (line " + std::to_string(first.place.line) + ")";
        const bool isError = m_kind == TemplateKind::KnobFile || !isSame;
        Add(isError ? Severity::Error : Severity::Warning, assignment, "assigned-twice",
            isSame ? "the option is assigned a second time" + where
                   : "the option was assigned another value before" + where);
    }

    std::string UnknownText(std::string_view name)
    {
        const std::string_view nearest = m_nearestNames++ < kMostNearestNames ? m_table.NearestName(name) : "";
        return "there is no option \"" + std::string(name) + "\"" +
               (nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?");
    }

    /// The value of an option behind the update, as a dump has it; nothing where it is not known.
    std::optional<std::string_view> PlannedValue(const BiosOption &option) const
    {
        const auto planned = m_first.find(option.name);
        if (planned != m_first.end())
            return m_plan.changes[planned->second].newValue;
        return option.unreadable.empty() ? std::optional(EffectiveValue(option)) : std::nullopt;
    }

    /// The rules of a real machine's driver, which the tool keeps to.
    void CheckRules(const PlannedChange &change)
    {
        const BiosOption &option = *change.option;
        // Where several devices have an option of one name, its device stands in front.
        const std::size_t prefix = option.name.rfind('/') + 1;
        const auto textOf = [&](std::string_view name) -> std::optional<std::string>
        {
            const BiosOption *other = m_table.Find(std::string(option.name.substr(0, prefix)).append(name));
            other = other ? other : m_table.Find(name);
            const std::optional<std::string_view> value =
                other && !other->isRedacted ? PlannedValue(*other) : std::nullopt;
            return value ? std::optional(ValueText(*other, *value)) : std::nullopt;
        };
        const std::string problem = change.isToDo ? BarringRule(option, change.newValue, textOf) : "";
        if (!problem.empty())
            m_plan.findings.push_back(
                {Severity::Error, change.place, std::string(option.name), "condition-not-met", problem});
    }

    /// The conditions are about the values behind the update.
    void CheckCondition(const PlannedChange &change)
    {
        const auto valueOf = [&](std::string_view name) -> std::optional<std::uint64_t>
        {
            const BiosOption *const option = m_table.Find(name);
            const auto planned = m_first.find(name);
            if (!option)
                return std::nullopt;
            return DumpNumber(planned == m_first.end() ? EffectiveValue(*option)
                                                       : std::string_view(m_plan.changes[planned->second].newValue));
        };
        if (!change.isToDo || IsConditionMet(change.option->condition, valueOf) != false)
            return;
        m_plan.findings.push_back({Severity::Warning, change.place, std::string(change.option->name),
                                   "condition-not-met",
                                   "the option's condition is not met, so the value may have no effect: " +
                                       std::string(change.option->condition)});
    }

    const OptionTable &m_table;
    TemplateContent m_content;
    TemplateKind m_kind;
    Plan m_plan;
    /// By name, the place of its change.
    std::unordered_map<std::string_view, std::size_t> m_first;
    int m_nearestNames = 0;
};

} // namespace

bool Plan::IsSound() const
{
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding &finding) { return finding.severity == Severity::Error; });
}

std::size_t Plan::ToDo() const
{
    return static_cast<std::size_t>(
        std::count_if(changes.begin(), changes.end(), [](const PlannedChange &change) { return change.isToDo; }));
}

Plan MakePlan(const OptionTable &table, TemplateContent content, TemplateKind kind)
{
    return Planner(table, std::move(content), kind).Make();
}

Plan PlanDefaults(std::span<const BiosOption *const> options)
{
    Plan plan;
    for (const BiosOption *const option : options)
    {
        const std::optional<std::string> forTool = WritableValue(*option, option->defaultValue);
        const bool isSame =
            option->unreadable.empty() && IsSameValue(*option, option->defaultValue, EffectiveValue(*option));
        if (option->kind == OptionKind::Text && !option->hasDefault)
            plan.findings.push_back({Severity::Error,
                                     {},
                                     std::string(option->name),
                                     "no-default",
                                     "the firmware does not tell the option's default"});
        else if (isSame)
            plan.changes.push_back({option, "", std::string(option->defaultValue), false, {}});
        else if (option->isReadOnly)
            plan.findings.push_back(
                {Severity::Error, {}, std::string(option->name), "read-only", "the option is read-only"});
        else if (forTool)
            plan.changes.push_back({option, *forTool, std::string(option->defaultValue), true, {}});
        else
            plan.findings.push_back({Severity::Error,
                                     {},
                                     std::string(option->name),
                                     "invalid-value",
                                     "the default cannot be handed to the tool"});
    }
    return plan;
}

std::string_view VerdictName(Verdict verdict)
{
    constexpr std::string_view kNames[] = {"pending restart", "in effect", "unchanged", "rejected", "mismatch"};
    return kNames[static_cast<std::size_t>(verdict)];
}

Verdict Verify(const PlannedChange &change, const OptionTable &after)
{
    const BiosOption *const option = after.Find(change.option->name);
    if (!option)
        return Verdict::Mismatch;
    // Nobody can tell.
    if (!option->unreadable.empty())
        return change.isToDo ? Verdict::PendingRestart : Verdict::Unchanged;
    const auto isNew = [&](std::string_view value) { return IsSameValue(*option, value, change.newValue); };
    if (isNew(option->currentValue) && isNew(option->pendingValue.value_or(option->currentValue)))
        return change.isToDo ? Verdict::InEffect : Verdict::Unchanged;
    if (option->pendingValue)
        return isNew(*option->pendingValue) ? Verdict::PendingRestart : Verdict::Mismatch;
    if (change.option->unreadable.empty() && !IsSameValue(*option, option->currentValue, change.option->currentValue))
        return Verdict::Mismatch;
    return after.TellsPending() ? Verdict::Rejected : Verdict::PendingRestart;
}
