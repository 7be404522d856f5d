#include "OptionDiff.h"

#include "OptionValue.h"

std::string_view ChangeName(ChangeKind kind)
{
    constexpr std::string_view kNames[] = {"changed", "added", "removed"};
    return kNames[static_cast<std::size_t>(kind)];
}

std::string_view OptionChange::OldValue() const
{
    if (before && before == after)
        return before->defaultValue;
    return before ? before->currentValue : std::string_view();
}

std::string_view OptionChange::NewValue() const
{
    return after ? after->currentValue : std::string_view();
}

bool AreKnownToDiffer(const BiosOption &before, const BiosOption &after)
{
    const bool areKnown =
        !before.isRedacted && !after.isRedacted && before.unreadable.empty() && after.unreadable.empty();
    return areKnown && !IsSameValue(after, before.currentValue, after.currentValue);
}

std::vector<OptionChange> Diff(const OptionTable &before, const OptionTable &after)
{
    std::vector<OptionChange> changes;
    for (const BiosOption &option : before.Options())
    {
        if (before.Find(option.name) != &option)
            continue;
        const BiosOption *const other = after.Find(option.name);
        if (!other)
            changes.push_back({ChangeKind::Removed, option, &option, nullptr});
        else if (AreKnownToDiffer(option, *other))
            changes.push_back({ChangeKind::Changed, *other, &option, other});
    }
    for (const BiosOption &option : after.Options())
    {
        if (after.Find(option.name) == &option && !before.Find(option.name))
            changes.push_back({ChangeKind::Added, option, nullptr, &option});
    }
    return changes;
}

std::vector<OptionChange> DiffToDefaults(const OptionTable &table)
{
    std::vector<OptionChange> changes;
    for (const BiosOption &option : table.Options())
    {
        if (option.isChanged)
            changes.push_back({ChangeKind::Changed, option, &option, &option});
    }
    return changes;
}
