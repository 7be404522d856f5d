#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Conditions as drivers write them into files that end in "_modifier". The kernel does not judge them; who writes a
/// setting is to.

enum class ConditionEffect
{
    /// The setting is locked.
    ReadOnly,
    /// The setting is hidden, which locks it, too.
    Suppress,
    /// The setting takes one value alone.
    Force
};

/// One part: "[ReadOnlyIf:Other=Value]", "[SuppressIfNot:Other=Value]", "Own[ForceIf:Other=Value]".
struct KernelCondition
{
    ConditionEffect effect = ConditionEffect::ReadOnly;
    /// Whether it holds where the other setting has another value.
    bool isNegated = false;
    std::string other;
    std::string value;
    /// With Force, the only value.
    std::string forced;
};

/// The parts of the text of such a file that are of these forms; others are passed over, nobody can judge them.
std::vector<KernelCondition> ParseConditions(std::string_view text);

/// The text of the value that a setting has, or nothing where it is not known.
using ValueOfSetting = std::function<std::optional<std::string>(const std::string &name)>;

/// Whether `condition` holds. Nothing where it cannot be judged.
std::optional<bool> Holds(const KernelCondition &condition, const ValueOfSetting &valueOf);
