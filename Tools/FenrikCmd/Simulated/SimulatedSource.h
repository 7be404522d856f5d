#pragma once

#include "Firmware.h"
#include "SettingsSource.h"

/// The simulated firmware as a source of settings. A source without a path has `firmware` alone and keeps no changes.
class SimulatedSource : public SettingsSource
{
public:
    /// Of the firmware in the file at `path`, read when it is first asked for.
    explicit SimulatedSource(std::string path) : m_path(std::move(path)) {}
    explicit SimulatedSource(Firmware firmware) : m_firmware(std::move(firmware)) {}

    std::string Status() override;
    std::vector<std::pair<std::string, std::string>> Machine() override;
    bool ValuesNeedRights() override { return false; }
    std::optional<std::size_t> PendingCount() override { return State().pending.size(); }
    void List(const SettingVisitor &visit) override;
    std::string Program(const std::vector<Assignment> &assignments) override;
    PendingSettings Pending() override;
    std::string Reset(const std::string &what) override;

private:
    Firmware &State();

    std::string m_path;
    std::optional<Firmware> m_firmware;
};

/// The firmware beside the program (FirmwarePath).
std::unique_ptr<SettingsSource> MakeSimulatedSource(const Configuration &configuration, WarningSink warn);
