#pragma once

#include "SettingsSource.h"
#include "ToolError.h"

#include <string_view>

/// Hands all settings of a machine to the visitor, as SettingsSource::List does.
using SettingLister = std::function<void(const SettingVisitor &visit)>;

/// Reads `text`, a knob file with line feeds as line ends, and checks every assignment against the settings that `list`
/// hands out in one walk. Gives the assignments in the order of their lines, without those of a read-only setting to
/// the value that it has. Throws ToolError (BadInput) that names the first bad line.
///
/// What follows a ";", and a line that begins with "#", is a comment. The other lines are blank, sections ("[...]",
/// which only group) or assignments: the option's name, "=" or "==", the value, with blanks around each. A value is the
/// text of one of the option's choices or its number (decimal, or hexadecimal with "0x"); for options without choices
/// it is a number within the option's size and limits, or a text within its length. An option is assigned once. An
/// assignment of nothing to nothing, as an empty record of a template leaves it, is passed over.
std::vector<Assignment> ReadAssignments(std::string_view text, const SettingLister &list);

/// The error for an assignment that a source refuses; `reason` is a phrase such as "it is locked".
ToolError RefusedAssignment(const Assignment &assignment, const std::string &reason);
