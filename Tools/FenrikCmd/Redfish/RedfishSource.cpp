#include "RedfishSource.h"

#include "Credentials.h"
#include "KnobFile.h"
#include "Machine.h"
#include "NativeFolder.h"
#include "Programming.h"

#include <algorithm>

namespace
{

using namespace Redfish;

HttpSettings SettingsOf(const RedfishConfiguration &configuration)
{
    Credentials credentials = ReadCredentials(configuration);
    HttpSettings settings;
    settings.url = configuration.url;
    settings.caFile = configuration.caFile;
    settings.isInsecure = configuration.isInsecure;
    settings.timeoutSeconds = configuration.timeoutSeconds;
    settings.user = std::move(credentials.user);
    settings.password = std::move(credentials.password);
    return settings;
}

class RedfishSource : public SettingsSource
{
public:
    RedfishSource(const Configuration &configuration, WarningSink warn)
        : m_configuration(configuration), m_warn(std::move(warn)), m_service(SettingsOf(configuration.redfish))
    {
    }

    std::string Status() override;
    std::vector<std::pair<std::string, std::string>> Machine() override;
    bool ValuesNeedRights() override { return true; }
    std::optional<std::size_t> PendingCount() override;
    void List(const SettingVisitor &visit) override;
    std::string Program(const std::vector<Assignment> &assignments) override;
    PendingSettings Pending() override;
    std::string Reset(const std::string &what) override;

private:
    void Open();
    void Load();
    void RequireWriting() const;
    WireValues ValuesOf(const std::vector<Assignment> &assignments);
    void RefuseBarred(const std::vector<Assignment> &assignments, const WireValues &wanted) const;

    const Configuration &m_configuration;
    WarningSink m_warn;
    /// Goes last: the session is ended before.
    Platform::InterruptionHeldBack m_interruption;
    Service m_service;
    Redfish::Machine m_machine;
    bool m_isOpen = false;
    bool m_isLoaded = false;
};

/// Logs in and reads the current settings.
void RedfishSource::Open()
{
    if (m_isOpen)
        return;
    if (m_configuration.redfish.isInsecure)
        m_warn("the certificate of " + m_service.Connection().Name() +
               " is not verified (insecure in the configuration); whoever is on the way can read the password");
    m_service.Open();
    ReadBios(m_service, m_configuration.redfish, m_machine);
    m_isOpen = true;
}

/// Reads the rest.
void RedfishSource::Load()
{
    if (m_isLoaded)
        return;
    Open();
    ReadWaiting(m_service, m_machine);
    ReadMachineRegistry(m_service, m_configuration.redfish, m_warn, m_machine);
    m_isLoaded = true;
}

void RedfishSource::RequireWriting() const
{
    if (!m_configuration.isWritingAllowed)
        throw ToolError(ExitCode::InterfaceDisabled,
                        "the configuration does not permit to change this machine's settings (writing = yes)");
}

std::string RedfishSource::Status()
{
    Open();
    const std::string model = TextAt(m_machine.system, {"Model"});
    return m_service.Presentable("The BIOS interface is enabled; the settings come from the Redfish service at " +
                                 m_service.Connection().Name() + ", of the system \"" + m_machine.name + "\"" +
                                 (model.empty() ? "" : " (" + model + ")") + ".");
}

std::vector<std::pair<std::string, std::string>> RedfishSource::Machine()
{
    Open();
    std::vector<std::pair<std::string, std::string>> facts = {{"system", m_machine.name}};
    for (const auto &[name, key] : {std::pair("board", "Model"), std::pair("firmware", "BiosVersion")})
    {
        if (std::string text = TextAt(m_machine.system, {key}); !text.empty())
            facts.emplace_back(name, std::move(text));
    }
    return facts;
}

std::optional<std::size_t> RedfishSource::PendingCount()
{
    Load();
    if (!m_machine.tellsWaiting)
        return std::nullopt;
    return CountWaiting(m_machine.settings);
}

void RedfishSource::List(const SettingVisitor &visit)
{
    Load();
    ListSettings(m_machine.settings, visit);
}

WireValues RedfishSource::ValuesOf(const std::vector<Assignment> &assignments)
{
    const Registry &registry = m_machine.settings.registry;
    WireValues wanted;
    for (const Assignment &assignment : assignments)
    {
        const std::string &name = assignment.setting.name;
        const RegistryAttribute *const attribute = registry.Find(name);
        if (attribute && IsSecret(*attribute))
            m_service.Connection().Hidden().Add(assignment.value);
        std::optional<WireValue> value = ValueToSend(attribute, m_machine.settings.bios.Find(name), assignment.value);
        if (!value)
            throw RefusedAssignment(assignment, "the value is of another kind than the present one");
        wanted.emplace(name, std::move(*value));
    }
    return wanted;
}

void RedfishSource::RefuseBarred(const std::vector<Assignment> &assignments, const WireValues &wanted) const
{
    const std::string barred = FirstBarred(m_machine.settings, wanted);
    const auto refused = std::find_if(assignments.begin(), assignments.end(),
                                      [&](const Assignment &assignment) { return assignment.setting.name == barred; });
    if (refused != assignments.end())
        throw RefusedAssignment(*refused, "the machine keeps its value, " + refused->setting.condition);
}

std::string RedfishSource::Program(const std::vector<Assignment> &assignments)
{
    RequireWriting();
    Load();
    const WireValues wanted = ValuesOf(assignments);
    RefuseBarred(assignments, wanted);
    if (!wanted.empty())
        ProgramSettings(m_service, m_warn, m_machine, wanted);
    return std::to_string(assignments.size()) + " options programmed; they take effect with the next restart.";
}

PendingSettings RedfishSource::Pending()
{
    Load();
    PendingSettings pending;
    pending.isKnown = m_machine.tellsWaiting;
    ListSettings(m_machine.settings,
                 [&pending](Setting &setting)
                 {
                     if (setting.pendingValue)
                         pending.values.emplace_back(std::move(setting.name), std::move(*setting.pendingValue));
                     return true;
                 });
    std::sort(pending.values.begin(), pending.values.end());
    if (!pending.isKnown)
        pending.remarks.emplace_back("The service does not tell what waits for the restart.");
    for (const ServiceMessage &message : ApplyMessagesOf(m_machine.settings.bios.other))
    {
        if (message.IsFailure())
            pending.remarks.push_back("Not applied at the last restart: " + m_service.Presentable(Sentence(message)) +
                                      ".");
    }
    return pending;
}

std::string RedfishSource::Reset(const std::string &what)
{
    RequireWriting();
    if (!what.empty())
        throw ToolError(ExitCode::BadInput,
                        "a Redfish service resets the settings as a whole; leave \"" + what + "\" out");
    Open();
    ResetSettings(m_service, m_warn, m_machine);
    return "The firmware takes its settings as delivered with the next restart.";
}

} // namespace

std::unique_ptr<SettingsSource> MakeRedfishSource(const Configuration &configuration, WarningSink warn)
{
    return std::make_unique<RedfishSource>(configuration, std::move(warn));
}
