#pragma once

#include "OptionTable.h"
#include "Template.h"

#include <span>
#include <string>
#include <vector>

/// What an update would do, and what one has done. Nothing here reads or writes anything.

/// One option that is assigned a value it can take.
struct PlannedChange
{
    /// Of the table that the plan was made for.
    const BiosOption *option = nullptr;
    /// As the external tool is to get it.
    std::string forTool;
    /// As a dump has it.
    std::string newValue;
    /// Whether there is anything to program: it is neither the current value, with none waiting for a restart, nor the
    /// one that waits.
    bool isToDo = false;
    TemplatePlace place;
};

/// What a template, or assignments, would do.
struct Plan
{
    std::vector<PlannedChange> changes;
    /// In the order of their places.
    std::vector<Finding> findings;

    bool IsSound() const;
    std::size_t ToDo() const;
};

/// Judges every assignment for the options of `table`. Where an option is assigned twice, the first assignment counts;
/// a second with another value is an error, as is every second one in a knob file.
Plan MakePlan(const OptionTable &table, TemplateContent content, TemplateKind kind);

/// The plan that gives the options their defaults.
Plan PlanDefaults(std::span<const BiosOption *const> options);

/// What became of a planned change.
enum class Verdict
{
    /// It waits for the restart.
    PendingRestart,
    /// It is in effect already.
    InEffect,
    /// There was nothing to program.
    Unchanged,
    /// The tool did not take it.
    Rejected,
    /// Another value than the old and the new one was read back, or the option is gone.
    Mismatch
};

/// The words for it: "pending restart", "in effect", "unchanged", "rejected", "mismatch".
std::string_view VerdictName(Verdict verdict);

/// Judges a planned change by what was read back behind it. Where the dump tells what waits for a restart, a change of
/// which it tells nothing was not taken.
Verdict Verify(const PlannedChange &change, const OptionTable &after);
