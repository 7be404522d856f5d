#pragma once

#include "KnobFile.h"
#include "KnobList.h"

#include <string_view>

/// Text templates: assignments "name=value", each ended by ";". All of this may throw std::bad_alloc.

/// The assignments of a template, the first of each name, in byte-wise order of the names. They are parts of `text`.
AssignmentTable SplitTemplate(std::string_view text);

/// Puts the value of an option (a part of `knobs`) in the place of its text, for the knobs that are known.
void TranslateOptionTexts(const KnobList &knobs, AssignmentTable &assignments);
