#include "SimulatedSource.h"

#include "KnobImage.h"
#include "ToolError.h"

std::string SimulatedSource::Status()
{
    if (!State().interfaceEnabled)
        throw ToolError(ExitCode::InterfaceDisabled, "the BIOS interface is disabled, \"enable\" switches it on");
    return "The BIOS interface is enabled; the settings come from the simulated firmware.";
}

std::vector<std::pair<std::string, std::string>> SimulatedSource::Machine()
{
    return {{"board", "Larkmoor 2S reference board"}, {"firmware", "LKM2.0417.B09"}, {"date", "03/11/2020"}};
}

void SimulatedSource::List(const SettingVisitor &visit)
{
    const Firmware &firmware = State();
    for (std::uint32_t index = 0; index < firmware.knobCount; ++index)
    {
        Setting setting = MakeKnob(index);
        const auto current = firmware.current.find(setting.name);
        if (current != firmware.current.end())
            setting.currentValue = current->second;
        const auto pending = firmware.pending.find(setting.name);
        if (pending != firmware.pending.end())
            setting.pendingValue = pending->second;
        if (!visit(setting))
            return;
    }
}

std::string SimulatedSource::Program(const std::vector<Assignment> &assignments)
{
    Firmware &firmware = State();
    for (const Assignment &assignment : assignments)
        firmware.pending.insert_or_assign(assignment.setting.name, assignment.value);
    SaveFirmware(firmware, m_path);
    return std::to_string(assignments.size()) + " options programmed; they take effect with the next restart.";
}

PendingSettings SimulatedSource::Pending()
{
    const Firmware &firmware = State();
    return {{firmware.pending.begin(), firmware.pending.end()}, {}, true};
}

std::string SimulatedSource::Reset(const std::string &what)
{
    if (!what.empty())
        throw ToolError(ExitCode::BadInput, "the simulated firmware is reset as a whole; leave \"" + what + "\" out");
    m_firmware = DefaultFirmware();
    SaveFirmware(*m_firmware, m_path);
    return "The firmware is as it was delivered, with " + std::to_string(DefaultKnobCount()) + " options.";
}

Firmware &SimulatedSource::State()
{
    if (!m_firmware)
        m_firmware = LoadFirmware(m_path);
    return *m_firmware;
}

std::unique_ptr<SettingsSource> MakeSimulatedSource(const Configuration & /*configuration*/, WarningSink /*warn*/)
{
    return std::make_unique<SimulatedSource>(FirmwarePath());
}
