#pragma once

#include "OptionTable.h"

#include <span>
#include <string>
#include <string_view>

/// What a value that is not to be seen is shown as.
inline constexpr std::string_view kRedacted = "(redacted)";

/// Patterns (MatchesGlob) for names, prompts and pages whose options tell of a person, a place or a secret.
std::span<const std::string_view> RedactedPatterns();

/// Whether `option` is one of those, is a text, or matches one of `further`.
bool IsToBeRedacted(const BiosOption &option, std::span<const std::string> further);

/// Marks the options to be redacted: texts about their values then name none (ValueText, JudgeValue).
void MarkRedacted(OptionTable &table, std::span<const std::string> further);

/// Marks them and takes their values out: no format can show what is not there any more. What has been
/// found out about them before (changed, different) stays.
void Redact(OptionTable &table, std::span<const std::string> further);

/// The same for several tables that are shown side by side: what is to be redacted in one of them is redacted, by its
/// name, in all.
void RedactTogether(std::span<OptionTable *const> tables, std::span<const std::string> further);
