#include "Commands.h"

#include "KnobFile.h"
#include "KnobImage.h"
#include "Number.h"
#include "Platform.h"
#include "SaveXml.h"
#include "SimulatedSource.h"
#include "Sources.h"
#include "ToolError.h"

#include <iostream>

namespace
{

void Warn(const std::string &sentence)
{
    std::cerr << kProgramName << ": warning: " << sentence << ".\n";
}

/// The source that the configuration chooses, and the configuration, which it refers to.
class ConfiguredSource
{
public:
    ConfiguredSource() : m_configuration(LoadConfiguration()), m_source(OpenSource(m_configuration, Warn)) {}

    SettingsSource &operator*() const { return *m_source; }
    SettingsSource *operator->() const { return m_source.get(); }

private:
    Configuration m_configuration;
    std::unique_ptr<SettingsSource> m_source;
};

void ShowStatus(const Invocation & /*invocation*/)
{
    const ConfiguredSource source;
    std::cout << source->Status() << '\n';
}

void SaveDump(const Invocation &invocation)
{
    const ConfiguredSource source;
    source->Status();
    const std::size_t count = SaveXml(*source, invocation.argument, invocation.fault.kind);
    std::cout << count << " options saved to \"" << invocation.argument << "\".\n";
}

void ProgramKnobs(const Invocation &invocation)
{
    const ConfiguredSource source;
    source->Status();
    std::string text;
    if (!Platform::ReadTextFile(invocation.argument, text))
        throw ToolError(ExitCode::BadInput, "cannot read the knob file \"" + invocation.argument + "\"");
    const std::vector<Assignment> assignments =
        ReadAssignments(text, [&](const SettingVisitor &visit) { source->List(visit); });
    std::cout << source->Program(assignments) << '\n';
}

void ShowPending(const Invocation & /*invocation*/)
{
    const ConfiguredSource source;
    const PendingSettings pending = source->Pending();
    for (const auto &[name, value] : pending.values)
        std::cout << name << " = " << value << '\n';
    for (const std::string &remark : pending.remarks)
        std::cout << remark << '\n';
    if (pending.isKnown)
        std::cout << pending.values.size() << " options wait for the restart.\n";
}

void Reset(const Invocation &invocation)
{
    const ConfiguredSource source;
    std::cout << source->Reset(invocation.argument) << '\n';
}

/// The path of the simulated firmware, for a command that concerns it alone.
std::string SimulatedFirmware()
{
    const SourceKind source = LoadConfiguration().source;
    if (source != SourceKind::Simulated)
        throw ToolError(ExitCode::BadInput, "the command is for the simulated firmware; the source is \"" +
                                                std::string(SourceName(source)) + "\"");
    return FirmwarePath();
}

void RestartMachine(const Invocation & /*invocation*/)
{
    const std::string path = SimulatedFirmware();
    Firmware firmware = LoadFirmware(path);
    const std::size_t count = firmware.pending.size();
    Restart(firmware);
    SaveFirmware(firmware, path);
    std::cout << "Restarted; " << count << " options took effect.\n";
}

void SwitchInterface(bool isEnabled)
{
    const std::string path = SimulatedFirmware();
    Firmware firmware = LoadFirmware(path);
    firmware.interfaceEnabled = isEnabled;
    SaveFirmware(firmware, path);
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
    const std::string path = SimulatedFirmware();
    const auto count = ParseNumber(invocation.argument);
    if (!count || *count == 0 || *count > kLargestKnobCount)
        throw ToolError(ExitCode::BadInput, "\"" + invocation.argument + "\" is not a number of options from 1 to " +
                                                std::to_string(kLargestKnobCount));
    SaveFirmware(GeneratedFirmware(static_cast<std::uint32_t>(*count)), path);
    std::cout << "The firmware now has " << *count << " options.\n";
}

constexpr Command kCommandTable[] = {
    {"fenrikstatus", nullptr, true, "Say which source of settings answers, and whether it can be used", ShowStatus},
    {"savexml", "FILE", true, "Save the XML dump of all options as FILE", SaveDump},
    {"progknobsfromfile", "FILE", true, "Program the options that the knob file FILE assigns: all of them or none",
     ProgramKnobs},
    {"pending", nullptr, true, "Show what is programmed and waits for a restart", ShowPending},
    {"reset", "WHAT", false, "Have the firmware take its settings as delivered; WHAT is a word of the source's own",
     Reset},
    {"restart", nullptr, true, "Simulated firmware: restart, what is programmed becomes current", RestartMachine},
    {"enable", nullptr, true, "Simulated firmware: enable the BIOS interface", EnableInterface},
    {"disable", nullptr, true, "Simulated firmware: disable the BIOS interface", DisableInterface},
    {"generate", "N", true, "Simulated firmware: replace it by one of N options, for measuring", Generate},
};

} // namespace

const std::span<const Command> kCommands = kCommandTable;
