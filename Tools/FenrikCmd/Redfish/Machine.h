#pragma once

#include "Configuration.h"
#include "Service.h"
#include "SettingRecords.h"
#include "SettingsSource.h"

namespace Redfish
{

/// Where the settings of one machine are at its service, and what they are.
struct Machine
{
    /// The system's own name.
    std::string name;
    Json system;
    std::string biosLink;
    /// Of the settings object, where what is to wait is sent; empty where there is none.
    std::string settingsLink;
    /// Of the settings object; empty where it has none.
    std::string entityTag;
    MachineSettings settings;
    /// Whether the settings object tells what waits.
    bool tellsWaiting = false;
};

/// Finds the machine and reads its current settings. Throws ToolError where that fails (Unreadable), or there is no
/// such machine or none with settings (InterfaceDisabled).
void ReadBios(Service &service, const RedfishConfiguration &configuration, Machine &machine);

/// Reads the current settings once more.
void ReadCurrent(Service &service, Machine &machine, bool goesThrough = false);

/// Reads what waits, and the entity tag. A settings object that the service does not have is as good as none.
void ReadWaiting(Service &service, Machine &machine, bool goesThrough = false);

/// Reads the registry, in the language of the configuration; warns where the service has none, or an empty one.
void ReadMachineRegistry(Service &service, const RedfishConfiguration &configuration, const WarningSink &warn,
                         Machine &machine);

} // namespace Redfish
