#pragma once

#include "Registry.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Redfish
{

/// What the dependencies of a registry make of its attributes. Pure functions.

/// The value that an attribute has now, or null.
using CurrentValues = std::function<const WireValue *(std::string_view name)>;

/// Whether an attribute can be seen and changed.
struct Access
{
    /// Because of a dependency; what a registry hides for good is hidden from people alone.
    bool isHidden = false;
    /// Read-only, immutable or grayed out.
    bool isLocked = false;
};

/// What holds for each attribute of the registry, in its order: what the attribute itself says, then what the
/// dependencies make of it, one after the other; a later one sees what an earlier one has made. A dependency that
/// cannot be judged (of another attribute or property, or of values that cannot be compared) changes nothing.
std::vector<Access> JudgeAccess(const Registry &registry, const CurrentValues &current);

/// The dependencies that concern each attribute, as a text: "GrayIf(A == 0x1)", "HideIf(B != 0x0 and C > 0x3)",
/// "GrayUnless(...)", "DefaultValue = 0x2 If(...)"; several are joined by "; ". Empty where there are none. Choices
/// stand there with their numbers, other properties than current values as "A.Hidden".
std::vector<std::string> DependencyTexts(const Registry &registry);

/// The number of the choice that is sent as `value`, in the registry's order; nothing where it is none of them.
std::optional<std::size_t> ChoiceNumber(const RegistryAttribute &attribute, const WireValue &value);

} // namespace Redfish
