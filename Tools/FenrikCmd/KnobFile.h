#pragma once

#include "Firmware.h"

#include <string_view>

/// Reads `text`, a knob file with line feeds as line ends, and checks every assignment against the options of a
/// firmware with `knobCount` options. Gives the values as the firmware keeps them. Throws ToolError (BadInput) that
/// names the first bad line.
///
/// What follows a ";", and a line that begins with "#", is a comment. The other lines are blank, sections ("[...]",
/// which only group) or assignments: the option's name, "=" or "==", the value, with blanks around each. A value is the
/// text of one of the option's choices or its number (decimal, or hexadecimal with "0x"); for options without choices
/// it is a number within the option's size, or a text within its length. An option is assigned once. An assignment of
/// nothing to nothing, as an empty record of a template leaves it, is passed over.
KnobValues ReadAssignments(std::string_view text, std::uint32_t knobCount);
