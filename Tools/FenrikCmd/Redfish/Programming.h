#pragma once

#include "Machine.h"

namespace Redfish
{

/// Has `wanted` wait for the machine's restart: all of it in one request, or none. Goes through once it has begun, also
/// when an end of the program waits. Reads back what the service has made of it; what it has taken by halves is put
/// back. Throws ToolError: BadInput where the service refuses a value, InterfaceDisabled where the user may not program
/// or the service takes no settings, CannotWrite where it fails, takes nothing, or has been changed meanwhile. The
/// message says what stays changed, if anything does. `machine` must have its registry and what waits.
void ProgramSettings(Service &service, const WarningSink &warn, Machine &machine, const WireValues &wanted);

/// Has the service set all settings to their defaults with the next restart. Throws ToolError as above.
void ResetSettings(Service &service, const WarningSink &warn, const Machine &machine);

} // namespace Redfish
