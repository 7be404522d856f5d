#include "Commands.h"

#include "KnobFile.h"
#include "KnobImage.h"
#include "Number.h"
#include "Platform.h"
#include "SaveXml.h"
#include "ToolError.h"

#include <iostream>

namespace
{

void RequireInterface(const Firmware &firmware)
{
    if (!firmware.interfaceEnabled)
        throw ToolError(ExitCode::InterfaceDisabled, "the BIOS interface is disabled, \"enable\" switches it on");
}

/// The firmware, for a command that goes through the BIOS interface.
Firmware LoadThroughInterface()
{
    Firmware firmware = LoadFirmware(FirmwarePath());
    RequireInterface(firmware);
    return firmware;
}

void ShowStatus(const Invocation & /*invocation*/)
{
    LoadThroughInterface();
    std::cout << "The BIOS interface is enabled.\n";
}

void SaveDump(const Invocation &invocation)
{
    const Firmware firmware = LoadThroughInterface();
    SaveXml(firmware, invocation.argument, invocation.fault.kind);
    std::cout << firmware.knobCount << " options saved to \"" << invocation.argument << "\".\n";
}

void ProgramKnobs(const Invocation &invocation)
{
    Firmware firmware = LoadThroughInterface();
    std::string text;
    if (!Platform::ReadTextFile(invocation.argument, text))
        throw ToolError(ExitCode::BadInput, "cannot read the knob file \"" + invocation.argument + "\"");
    KnobValues values = ReadAssignments(text, firmware.knobCount);
    for (auto &[name, value] : values)
        firmware.pending.insert_or_assign(name, std::move(value));
    SaveFirmware(firmware, FirmwarePath());
    std::cout << values.size() << " options programmed; they take effect with the next restart.\n";
}

void ShowPending(const Invocation & /*invocation*/)
{
    const Firmware firmware = LoadFirmware(FirmwarePath());
    for (const auto &[name, value] : firmware.pending)
        std::cout << name << " = " << value << '\n';
    std::cout << firmware.pending.size() << " options wait for the restart.\n";
}

void RestartMachine(const Invocation & /*invocation*/)
{
    Firmware firmware = LoadFirmware(FirmwarePath());
    const std::size_t count = firmware.pending.size();
    Restart(firmware);
    SaveFirmware(firmware, FirmwarePath());
    std::cout << "Restarted; " << count << " options took effect.\n";
}

void SwitchInterface(bool isEnabled)
{
    Firmware firmware = LoadFirmware(FirmwarePath());
    firmware.interfaceEnabled = isEnabled;
    SaveFirmware(firmware, FirmwarePath());
    std::cout << "The BIOS interface is now " << (isEnabled ? "enabled" : "disabled") << ".\n";
}

void EnableInterface(const Invocation & /*invocation*/)
{
    SwitchInterface(true);
}

void DisableInterface(const Invocation & /*invocation*/)
{
    SwitchInterface(false);
}

void Generate(const Invocation &invocation)
{
    const auto count = ParseNumber(invocation.argument);
    if (!count || *count == 0 || *count > kLargestKnobCount)
        throw ToolError(ExitCode::BadInput, "\"" + invocation.argument + "\" is not a number of options from 1 to " +
                                                std::to_string(kLargestKnobCount));
    SaveFirmware(GeneratedFirmware(static_cast<std::uint32_t>(*count)), FirmwarePath());
    std::cout << "The firmware now has " << *count << " options.\n";
}

void Reset(const Invocation & /*invocation*/)
{
    SaveFirmware(DefaultFirmware(), FirmwarePath());
    std::cout << "The firmware is as it was delivered, with " << DefaultKnobCount() << " options.\n";
}

constexpr Command kCommandTable[] = {
    {"fenrikstatus", nullptr, "Say whether the BIOS interface is enabled", ShowStatus},
    {"savexml", "FILE", "Save the XML dump of all options as FILE", SaveDump},
    {"progknobsfromfile", "FILE", "Program the options that the knob file FILE assigns: all of them or none",
     ProgramKnobs},
    {"pending", nullptr, "Show what is programmed and waits for a restart", ShowPending},
    {"restart", nullptr, "Restart the simulated machine: what is programmed becomes current", RestartMachine},
    {"enable", nullptr, "Enable the BIOS interface", EnableInterface},
    {"disable", nullptr, "Disable the BIOS interface", DisableInterface},
    {"generate", "N", "Replace the firmware by one of N options, for measuring", Generate},
    {"reset", nullptr, "Replace the firmware by the one that is built in", Reset},
};

} // namespace

const std::span<const Command> kCommands = kCommandTable;
