#pragma once

#include "KernelDevice.h"
#include "SettingsSource.h"

#include <unordered_map>

/// This machine's firmware settings by way of the Linux kernel's firmware attributes (/sys/class/firmware-attributes).
class KernelSource : public SettingsSource
{
public:
    /// `configuration` and, where given, `files` outlive the object. Without `files` it takes the system's.
    KernelSource(const Configuration &configuration, WarningSink warn, AttributeFiles *files = nullptr);

    std::string Status() override;
    std::vector<std::pair<std::string, std::string>> Machine() override;
    /// Reads the settings.
    bool ValuesNeedRights() override;
    /// The kernel tells no more than that something waits.
    std::optional<std::size_t> PendingCount() override { return std::nullopt; }
    void List(const SettingVisitor &visit) override;
    std::string Program(const std::vector<Assignment> &assignments) override;
    PendingSettings Pending() override;
    /// `what` is one of the words that the device's reset_bios offers.
    std::string Reset(const std::string &what) override;

private:
    const std::vector<KernelDevice> &Devices();
    const std::vector<KernelSetting> &Settings();
    const KernelSetting &Find(const std::string &name);
    /// The setting that a condition of `asking` names, of the same device; null where there is none.
    const KernelSetting *FindOther(const KernelSetting &asking, const std::string &entry);
    const KernelDevice &DeviceOf(const KernelSetting &setting);
    void RequireWriting() const;
    /// Throws ToolError where a condition bars one of the assignments once all of them are made.
    void JudgeConditions(const std::vector<Assignment> &assignments);
    std::string PendingRemarks();

    const Configuration &m_configuration;
    WarningSink m_warn;
    std::unique_ptr<AttributeFiles> m_ownFiles;
    AttributeFiles &m_files;
    std::optional<std::vector<KernelDevice>> m_devices;
    std::optional<std::vector<KernelSetting>> m_settings;
    std::unordered_map<std::string, const KernelSetting *> m_byName;
    std::unordered_map<std::string, const KernelSetting *> m_byPlace;
};

/// Those of the folder that the configuration names.
std::unique_ptr<SettingsSource> MakeKernelSource(const Configuration &configuration, WarningSink warn);
