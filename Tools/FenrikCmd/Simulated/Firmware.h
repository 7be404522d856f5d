#pragma once

#include <cstdint>
#include <map>
#include <string>

/// Option values by option name.
using KnobValues = std::map<std::string, std::string>;

/// The state of the simulated machine. What its options are follows from their number alone (KnobImage.h).
struct Firmware
{
    std::uint32_t knobCount = 0;
    bool interfaceEnabled = true;
    /// Values that are not the option's default.
    KnobValues current;
    /// Values that become current with the next restart.
    KnobValues pending;
};

/// The largest firmware that can be generated.
constexpr std::uint32_t kLargestKnobCount = 5'000'000;

/// A machine as it is delivered: the built-in options, a few of them already set by its owner.
Firmware DefaultFirmware();

/// A machine with `knobCount` options, all at their defaults.
Firmware GeneratedFirmware(std::uint32_t knobCount);

/// Makes the pending values current.
void Restart(Firmware &firmware);

/// The file that keeps the firmware, in the directory of the program.
std::string FirmwarePath();

/// Reads the firmware from `path`; makes the file with the default firmware when there is none. Throws ToolError:
/// Unreadable when the file cannot be read or is damaged (it is left as it is), CannotWrite when it cannot be
/// made.
Firmware LoadFirmware(const std::string &path);

/// Replaces the file at `path` in one step. Throws ToolError (CannotWrite), with the earlier file left in place.
void SaveFirmware(const Firmware &firmware, const std::string &path);
