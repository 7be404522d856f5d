#pragma once

#include "StatusCode.h"

#include <string>
#include <string_view>
#include <vector>

/// Files that name knobs (list files) and files that assign values to them (knob files). Both have the extension ini.

/// One assignment of a knob file. Both point into texts that live longer.
struct Assignment
{
    std::string_view name;
    std::string_view value;
};
using AssignmentTable = std::vector<Assignment>;

/// Whether the text after the last "." of a file name is "ini" in any letter case. A name without "." passes.
bool HasIniExtension(const std::string &fileName);

/// Appends to `names` the text before the first "=" of every line of the file that has a "=" and no ";". A file that
/// cannot be opened has no lines. Returns Success, or NoMemory.
Status readKnobNames(std::vector<std::string> &names, std::string path);

/// Has the tool program the knobs that the knob file assigns; they take effect with the machine's restart. `knobFile`,
/// absolute or relative to the current directory, goes to the tool as it is and is left where it is. Returns Success
/// when the tool accepted it; Failed, with no tool started, when the path has another extension than ini (any letter
/// case) or cannot be passed to the tool; Failed when the tool cannot be started; NotFound when it ended with exit
/// code 1; ToolFailed for another exit code; NoMemory.
Status writeKnob(std::string knobFile);

/// Writes a knob file: "[BiosKnobs]" and one line "name==value" per assignment, lines ended by CR LF. A file at `path`
/// is replaced as a whole (Platform::ReplacedFile): the tool never finds half of one. Returns false when it stayed as
/// it was. May throw std::bad_alloc.
bool WriteKnobFile(const std::string &path, const AssignmentTable &assignments);
