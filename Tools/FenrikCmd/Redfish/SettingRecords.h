#pragma once

#include "Dependencies.h"
#include "Registry.h"
#include "Resource.h"
#include "SettingsSource.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace Redfish
{

/// What a machine's service tells of its settings. Not moved while an index of its registry lives.
struct MachineSettings
{
    /// The resource Bios, with the current values.
    AttributeResource bios;
    /// The settings object, with those that wait; empty where there is none.
    AttributeResource waiting;
    /// Empty where the service has none.
    Registry registry;
    /// The page of those settings that have none of their own.
    std::string page;
};

/// The value that waits for a restart and is another one than the current one, or null.
const WireValue *WaitingValue(const MachineSettings &machine, const std::string &name);

/// Whether two values are one to the machine: numbers also when one of them comes as a string.
bool IsSameValue(const WireValue &left, const WireValue &right);

/// Hands the settings of a machine to `visit` until it returns false: those of the registry, the pages in the order of
/// their first settings, then those that the machine has beyond, as texts. A choice has its place among the attribute's
/// choices as its number; false and true have 0 and 1. A password has no value.
void ListSettings(const MachineSettings &machine, const SettingVisitor &visit);

/// How many of them have a value that waits.
std::size_t CountWaiting(const MachineSettings &machine);

/// The value to be sent that means `value`, one of a dump, to the attribute: of the kind that the registry tells, a
/// number as a string where the current value comes as one. `attribute` is null where the registry does not know it;
/// the kind is then that of `current`, which may be null, too. Nothing where `value` is none of that kind. Pure.
std::optional<WireValue> ValueToSend(const RegistryAttribute *attribute, const WireValue *current,
                                     const std::string &value);

/// Whether nobody is to see, and nobody can read back, the attribute's value.
bool IsSecret(const RegistryAttribute &attribute);

/// Values by the names of their attributes.
using WireValues = std::map<std::string, WireValue>;

/// The first of `wanted` that the dependencies lock or hide once all of them are set and what waits has taken effect;
/// empty where there is none. Pure.
std::string FirstBarred(const MachineSettings &machine, const WireValues &wanted);

/// The request that has `wanted` wait for the restart. What waits already goes along, since some services take the
/// request for all that is to wait. Pure.
Json PatchBody(const MachineSettings &machine, const WireValues &wanted);

} // namespace Redfish
