#pragma once

#include "KnobFile.h"
#include "KnobList.h"

#include <string_view>

/// Text templates: assignments "name=value", each ended by ";". All of this may throw std::bad_alloc.

/// One record of a template, as a part of its text: what stands up to a ";" or to the end.
struct TemplateRecord
{
    Assignment assignment;
    /// Whether there is a "=".
    bool isAssignment = false;
    /// What is left out behind the line of the value.
    std::string_view rest;
};

/// Takes the first record off the front of `text`, which must not be empty.
TemplateRecord TakeRecord(std::string_view &text);

/// The assignments of a template, the first of each name, in byte-wise order of the names. They are parts of `text`.
AssignmentTable SplitTemplate(std::string_view text);

/// Puts the value of an option (a part of `knobs`) in the place of its text, for the knobs that are known.
void TranslateOptionTexts(const KnobList &knobs, AssignmentTable &assignments);
