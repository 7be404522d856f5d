#pragma once

#include "OptionDiff.h"
#include "OptionTable.h"
#include "Output.h"
#include "Plan.h"

/// Options and what is said of them as JSON. What is not known is not there.

json OptionJson(const BiosOption &option);

/// A value: its text, and its number where it is one. Null where it is redacted.
json ValueJson(const BiosOption &option, std::string_view value);

json ChangeJson(const OptionChange &change);

/// With the verdict, if there is one yet.
json PlannedJson(const PlannedChange &change, const Verdict *verdict);
