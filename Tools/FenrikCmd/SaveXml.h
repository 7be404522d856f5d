#pragma once

#include "Fault.h"
#include "SettingsSource.h"

#include <string>

/// Writes the dump of `source` to `path`, in one step, and returns the number of its settings. Where the source says
/// that its values need rights, only the file's owner may read it. With a fault of the dump it writes what the fault
/// says: no file (an earlier one goes), an empty one, the first half, another root element, or a dump of more than
/// 100 MB. Throws ToolError (CannotWrite, and what the source throws); an earlier file then stays.
std::size_t SaveXml(SettingsSource &source, const std::string &path, FaultKind fault);
