#include "Redaction.h"

#include "Glob.h"

#include <algorithm>
#include <unordered_set>

namespace
{

constexpr std::string_view kPatterns[] = {
    "*password*", "*passphrase*", "*secret*",     "*credential*",    "*asset*tag*", "*service*tag*",
    "*tag",       "*serialnum*",  "*serial num*", "*serial number*", "*address*",   "*addr",
    "*hostname*", "*host name*",  "*uuid*",       "*owner*",         "*user name*", "*username*"};

} // namespace

std::span<const std::string_view> RedactedPatterns()
{
    return kPatterns;
}

bool IsToBeRedacted(const BiosOption &option, std::span<const std::string> further)
{
    const auto fits = [&](std::string_view pattern)
    {
        return MatchesGlob(pattern, option.name) || MatchesGlob(pattern, option.prompt) ||
               MatchesGlob(pattern, option.page);
    };
    return option.kind == OptionKind::Text || std::any_of(std::begin(kPatterns), std::end(kPatterns), fits) ||
           std::any_of(further.begin(), further.end(), fits);
}

void MarkRedacted(OptionTable &table, std::span<const std::string> further)
{
    for (BiosOption &option : table.Options())
        option.isRedacted = option.isRedacted || IsToBeRedacted(option, further);
}

namespace
{

void TakeValuesOut(OptionTable &table)
{
    for (BiosOption &option : table.Options())
    {
        if (!option.isRedacted)
            continue;
        option.defaultValue = {};
        option.currentValue = {};
        if (option.pendingValue)
            option.pendingValue = std::string_view();
    }
}

} // namespace

void Redact(OptionTable &table, std::span<const std::string> further)
{
    MarkRedacted(table, further);
    TakeValuesOut(table);
}

void RedactTogether(std::span<OptionTable *const> tables, std::span<const std::string> further)
{
    std::unordered_set<std::string_view> names;
    for (OptionTable *const table : tables)
    {
        MarkRedacted(*table, further);
        for (const BiosOption &option : table->Options())
        {
            if (option.isRedacted)
                names.insert(option.name);
        }
    }
    for (OptionTable *const table : tables)
    {
        for (BiosOption &option : table->Options())
            option.isRedacted = names.contains(option.name);
        TakeValuesOut(*table);
    }
}
