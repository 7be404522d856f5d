#pragma once

#include "OptionTable.h"

#include <vector>

/// What differs between two tables, or between the options' defaults and their values.

enum class ChangeKind
{
    Changed,
    Added,
    Removed
};

/// The word for it: "changed", "added", "removed".
std::string_view ChangeName(ChangeKind kind);

/// One option that differs. Refers to the tables' options.
struct OptionChange
{
    ChangeKind kind;
    /// As it is now, or was.
    const BiosOption &option;
    /// Null where it was added.
    const BiosOption *before;
    /// Null where it was removed.
    const BiosOption *after;

    /// The values: of the one before and the one behind, or, where both are one option, of its default and its current
    /// value.
    std::string_view OldValue() const;
    std::string_view NewValue() const;
};

/// Whether two options of one name, each from a table of its own, have other values: as numbers where both have them,
/// as texts otherwise. False where one of them is redacted, since nobody knows then; so values are compared before they
/// are taken out.
bool AreKnownToDiffer(const BiosOption &before, const BiosOption &after);

/// What has another value, was added or removed on the way from `before` to `after`, in the order of `before` and then
/// of `after`. Options are the same by name; of several with one name the first counts. Values are compared as numbers
/// where both options have them, as texts otherwise; one that could not be read is not compared.
std::vector<OptionChange> Diff(const OptionTable &before, const OptionTable &after);

/// The options whose value is not their default; each stands on both sides.
std::vector<OptionChange> DiffToDefaults(const OptionTable &table);
