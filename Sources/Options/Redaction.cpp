#include "Redaction.h"

#include "Glob.h"

#include <algorithm>

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
        option.isRedacted = IsToBeRedacted(option, further);
}

void Redact(OptionTable &table, std::span<const std::string> further)
{
    MarkRedacted(table, further);
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
