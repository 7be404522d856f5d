#pragma once

#include "Fault.h"
#include "Firmware.h"

#include <string>

/// Writes the dump of `firmware` to `path`, in one step. With a fault of the dump it writes what the fault says: no
/// file (an earlier one goes), an empty one, the first half, another root element, or a dump of more than 100 MB.
/// Throws ToolError (CannotWrite); an earlier file then stays.
void SaveXml(const Firmware &firmware, const std::string &path, FaultKind fault);
