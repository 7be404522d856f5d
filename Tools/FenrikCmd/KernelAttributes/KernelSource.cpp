#include "KernelSource.h"

#include "KernelError.h"
#include "KernelWriter.h"
#include "KnobFile.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace
{

/// The text of the value `value` of a dump, as conditions name it; nothing where it is not known.
std::optional<std::string> TextOfValue(const KernelSetting &setting, const std::string &value)
{
    try
    {
        return ToDriver(setting, value);
    }
    catch (const std::invalid_argument &)
    {
        return std::nullopt;
    }
}

/// Whether the value `value` of a dump is the current one, so far as that is known.
bool HasValue(const KernelSetting &setting, const std::string &value)
{
    return setting.rawValue && ToDump(setting, *setting.rawValue) == value;
}

/// A key for a setting that conditions of the same device name.
std::string PlaceOf(const std::string &device, const std::string &entry)
{
    return device + '/' + entry;
}

/// Puts in front of each change those that its conditions are about: they may open it.
class ChangeOrder
{
public:
    explicit ChangeOrder(std::vector<KernelChange> &changes)
    {
        for (KernelChange &change : changes)
            m_byPlace.emplace(PlaceOf(change.setting->device, change.setting->entry), &change);
        for (KernelChange &change : changes)
            Take(change);
        changes = std::move(m_ordered);
    }

private:
    void Take(KernelChange &change)
    {
        if (!m_taken.insert(&change).second)
            return;
        for (const KernelCondition &condition : change.setting->conditions)
        {
            const auto other = m_byPlace.find(PlaceOf(change.setting->device, condition.other));
            if (other != m_byPlace.end())
                Take(*other->second);
        }
        m_ordered.push_back(change);
    }

    std::unordered_map<std::string, KernelChange *> m_byPlace;
    std::unordered_set<const KernelChange *> m_taken;
    std::vector<KernelChange> m_ordered;
};

/// Which state the conditions of `setting` give it. A setting that a condition forces to a value is locked.
SettingState StateOf(const KernelSetting &setting, const ValueOfSetting &valueOf)
{
    SettingState state = SettingState::Open;
    for (const KernelCondition &condition : setting.conditions)
    {
        if (Holds(condition, valueOf) == true)
            state = std::max(state, condition.effect == ConditionEffect::Suppress ? SettingState::Hidden
                                                                                  : SettingState::Locked);
    }
    return state;
}

/// Why the conditions bar `text` from `setting`; empty where they do not, or cannot be judged.
std::string Barring(const KernelSetting &setting, const std::string &text, const ValueOfSetting &valueOf)
{
    for (const KernelCondition &condition : setting.conditions)
    {
        const bool isOwnValue = condition.effect == ConditionEffect::Force && condition.forced == text;
        if (isOwnValue || Holds(condition, valueOf) != true)
            continue;
        const std::string where = ShownText(condition.other) + (condition.isNegated ? " is not \"" : " is \"") +
                                  ShownText(condition.value) + "\"";
        switch (condition.effect)
        {
        case ConditionEffect::ReadOnly:
            return "it is locked while " + where;
        case ConditionEffect::Suppress:
            return "it is hidden while " + where;
        case ConditionEffect::Force:
            return "it has to be \"" + ShownText(condition.forced) + "\" while " + where;
        }
    }
    return {};
}

} // namespace

KernelSource::KernelSource(const Configuration &configuration, WarningSink warn, AttributeFiles *files)
    : m_configuration(configuration), m_warn(std::move(warn)),
      m_ownFiles(files ? nullptr : std::make_unique<SystemAttributeFiles>(configuration.kernel.root)),
      m_files(files ? *files : *m_ownFiles)
{
}

std::string KernelSource::Status()
{
    std::string names;
    for (const KernelDevice &device : Devices())
        names += (names.empty() ? "" : ", ") + ShownText(device.name);
    return "The BIOS interface is enabled; the settings come from the kernel's firmware attributes (" + names +
           "), writing is " + (m_configuration.isWritingAllowed ? "on" : "off") + ".";
}

std::vector<std::pair<std::string, std::string>> KernelSource::Machine()
{
    std::string names;
    for (const KernelDevice &device : Devices())
        names += (names.empty() ? "" : " ") + device.name;
    return {{"source", std::string(SourceName(SourceKind::Kernel))}, {"devices", names}};
}

bool KernelSource::ValuesNeedRights()
{
    const std::vector<KernelSetting> &settings = Settings();
    return std::any_of(settings.begin(), settings.end(),
                       [](const KernelSetting &setting) { return setting.needsRights; });
}

void KernelSource::List(const SettingVisitor &visit)
{
    for (const KernelSetting &kernelSetting : Settings())
    {
        Setting setting = kernelSetting.setting;
        if (!kernelSetting.conditions.empty())
            setting.state = StateOf(kernelSetting,
                                    [&](const std::string &entry)
                                    {
                                        const KernelSetting *const other = FindOther(kernelSetting, entry);
                                        return other ? other->rawValue : std::nullopt;
                                    });
        if (!visit(setting))
            return;
    }
}

std::string KernelSource::Program(const std::vector<Assignment> &assignments)
{
    RequireWriting();
    std::vector<KernelChange> changes;
    for (const Assignment &assignment : assignments)
    {
        const KernelSetting &setting = Find(assignment.setting.name);
        try
        {
            std::string text = ToDriver(setting, assignment.value);
            if (!HasValue(setting, assignment.value))
                changes.push_back({&assignment, &DeviceOf(setting), &setting, std::move(text)});
        }
        catch (const std::invalid_argument &reason)
        {
            throw RefusedAssignment(assignment, reason.what());
        }
    }
    JudgeConditions(assignments);
    if (changes.empty())
        return "0 options programmed; every one has its value already.";
    const ChangeOrder ordered(changes);
    KernelPassword password(m_configuration.kernel);
    std::string said = WriteChanges(m_files, changes, password, m_warn);
    return said + PendingRemarks();
}

PendingSettings KernelSource::Pending()
{
    const std::string remarks = PendingRemarks();
    return {{}, {"The kernel does not tell which options wait for the restart." + remarks}, false};
}

std::string KernelSource::Reset(const std::string &what)
{
    RequireWriting();
    std::string offered;
    const KernelDevice *device = nullptr;
    for (const KernelDevice &candidate : Devices())
    {
        if (!candidate.hasResetBios)
            continue;
        if (device)
            throw ToolError(ExitCode::InterfaceDisabled, "several devices can be reset; reset them in their setups");
        device = &candidate;
        offered = ReadText(m_files, candidate.PathOf(kResetBios)).value_or("");
    }
    if (!device)
        throw ToolError(ExitCode::InterfaceDisabled, "no device of the kernel's firmware attributes offers a reset");
    // The chosen word stands in brackets.
    std::replace_if(
        offered.begin(), offered.end(), [](char character) { return character == '[' || character == ']'; }, ' ');
    const bool isOffered = !what.empty() && what.find(' ') == std::string::npos &&
                           (" " + offered + " ").find(" " + what + " ") != std::string::npos;
    if (!isOffered)
        throw ToolError(ExitCode::BadInput, "\"reset\" takes one of the words that " + ShownText(device->name) +
                                                " offers: " + ShownText(offered));
    KernelPassword password(m_configuration.kernel);
    KernelSession session(m_files, *device, password, m_warn);
    const std::error_code error = session.Write(device->PathOf(kResetBios), what);
    if (error)
        throw ToolError(CodeOfWriteFailure(error), ShownText(device->name) + " was not reset: " + WriteFailure(error));
    return "The settings of " + ShownText(device->name) + " become \"" + what + "\" with the next restart.";
}

const std::vector<KernelDevice> &KernelSource::Devices()
{
    if (!m_devices)
        m_devices = ReadDevices(m_files, m_configuration.kernel.root);
    return *m_devices;
}

const std::vector<KernelSetting> &KernelSource::Settings()
{
    if (m_settings)
        return *m_settings;
    m_settings = ReadSettings(m_files, Devices());
    for (const KernelSetting &setting : *m_settings)
    {
        m_byName.emplace(setting.setting.name, &setting);
        m_byPlace.emplace(PlaceOf(setting.device, setting.entry), &setting);
    }
    return *m_settings;
}

const KernelSetting &KernelSource::Find(const std::string &name)
{
    Settings();
    return *m_byName.at(name);
}

const KernelSetting *KernelSource::FindOther(const KernelSetting &asking, const std::string &entry)
{
    Settings();
    const auto found = m_byPlace.find(PlaceOf(asking.device, entry));
    return found == m_byPlace.end() ? nullptr : found->second;
}

const KernelDevice &KernelSource::DeviceOf(const KernelSetting &setting)
{
    for (const KernelDevice &device : Devices())
    {
        if (device.name == setting.device)
            return device;
    }
    throw std::logic_error("an option of no device");
}

void KernelSource::RequireWriting() const
{
    if (!m_configuration.isWritingAllowed)
        throw ToolError(ExitCode::InterfaceDisabled, "writing is off; \"writing = yes\" in \"" + ConfigurationPath() +
                                                         "\" lets the firmware's settings be changed");
}

void KernelSource::JudgeConditions(const std::vector<Assignment> &assignments)
{
    std::unordered_map<const KernelSetting *, const Assignment *> assigned;
    for (const Assignment &assignment : assignments)
        assigned.emplace(&Find(assignment.setting.name), &assignment);
    for (const Assignment &assignment : assignments)
    {
        const KernelSetting &setting = Find(assignment.setting.name);
        const std::string text = ToDriver(setting, assignment.value);
        const auto valueOf = [&](const std::string &entry) -> std::optional<std::string>
        {
            const KernelSetting *const other = FindOther(setting, entry);
            const auto found = assigned.find(other);
            if (other && found != assigned.end())
                return TextOfValue(*other, found->second->value);
            return other ? other->rawValue : std::nullopt;
        };
        const std::string reason = HasValue(setting, assignment.value) ? "" : Barring(setting, text, valueOf);
        if (!reason.empty())
            throw RefusedAssignment(assignment, reason);
    }
}

std::string KernelSource::PendingRemarks()
{
    std::string remarks;
    for (const KernelDevice &device : Devices())
    {
        const std::optional<std::string> flag =
            device.hasPendingReboot ? ReadText(m_files, device.PathOf(kPendingReboot)) : std::nullopt;
        if (flag)
            remarks += " pending_reboot of " + ShownText(device.name) + " is \"" + ShownText(*flag) + "\".";
    }
    return remarks;
}

std::unique_ptr<SettingsSource> MakeKernelSource(const Configuration &configuration, WarningSink warn)
{
    return std::make_unique<KernelSource>(configuration, std::move(warn));
}
