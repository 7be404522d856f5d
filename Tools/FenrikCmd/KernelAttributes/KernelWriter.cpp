#include "KernelWriter.h"

#include "KernelError.h"
#include "Platform.h"

#include <algorithm>
#include <map>
#include <new>

namespace
{

constexpr const char *kBulk = "bulk";
constexpr const char *kSingle = "single";
constexpr const char *kSave = "save";
constexpr const char *kMechanism = "password";
/// What takes the password back.
constexpr const char *kNoPassword = "\n";

/// How a change reads behind its writing.
enum class Outcome
{
    New,
    /// As before: the driver may show the new value behind the restart alone.
    Old,
    Other,
    Unreadable
};

std::string Join(const std::vector<std::string> &names)
{
    std::string list;
    for (const std::string &name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

/// A device with its changes.
struct DeviceWork
{
    std::unique_ptr<KernelSession> session;
    std::size_t count = 0;
    /// Whether its changes are saved together, and whether it was so before.
    bool isBulk = false;
    bool wasBulk = false;
};

/// Writes changes one after the other and can take them back.
class Writing
{
public:
    Writing(AttributeFiles &files, const std::vector<KernelChange> &changes, KernelPassword &password,
            const WarningSink &warn)
        : m_files(files), m_changes(changes)
    {
        for (const KernelChange &change : changes)
        {
            DeviceWork &work = m_devices[change.device];
            if (!work.session)
                work.session = std::make_unique<KernelSession>(files, *change.device, password, warn);
            ++work.count;
        }
    }

    std::string Run()
    {
        for (auto &[device, work] : m_devices)
            StartBulk(*device, work);
        for (const KernelChange &change : m_changes)
            Write(change);
        for (const KernelChange &change : m_changes)
            RefuseOtherValue(change);
        for (auto &[device, work] : m_devices)
            Save(*device, work);
        return Summary();
    }

private:
    KernelSession &SessionOf(const KernelChange &change) { return *m_devices.at(change.device).session; }

    /// Has a device that can do so save all its changes together: single ones it takes a few dozen of only.
    void StartBulk(const KernelDevice &device, DeviceWork &work)
    {
        if (!device.hasSaveSettings || work.count < 2)
            return;
        const std::string path = device.PathOf(kSaveSettings);
        work.wasBulk = ReadText(m_files, path) == kBulk;
        const std::error_code error = work.wasBulk ? std::error_code() : work.session->Write(path, kBulk);
        const bool isUnable = error == std::errc::operation_not_supported || error == std::errc::invalid_argument;
        if (error && !isUnable)
            Fail(CodeOf(*work.session, error), "the settings of " + ShownText(device.name) +
                                                   " cannot be saved together: " + Reason(*work.session, error));
        work.isBulk = !error;
    }

    void Write(const KernelChange &change)
    {
        if (Platform::InterruptionHeldBack::IsWaiting())
            Fail(ExitCode::CannotWrite, "it was interrupted before " + change.setting->setting.name);
        KernelSession &session = SessionOf(change);
        const std::error_code error = session.Write(change.setting->PathOf(kCurrentValue), change.newText);
        const bool isUntouched = error && OutcomeOf(change) == Outcome::Old;
        if (!isUntouched)
            m_written.push_back(&change);
        if (error)
            Fail(CodeOf(session, error), "line " + std::to_string(change.assignment->line) + ": " +
                                             change.setting->setting.name + ": " + Reason(session, error));
    }

    Outcome OutcomeOf(const KernelChange &change)
    {
        const Platform::FileText file = m_files.Read(change.setting->PathOf(kCurrentValue));
        if (file.error)
            return Outcome::Unreadable;
        const std::string text = ValueOfFile(file.bytes);
        if (text == change.newText || ToDump(*change.setting, text) == change.assignment->value)
            return Outcome::New;
        return text == change.setting->rawValue ? Outcome::Old : Outcome::Other;
    }

    void RefuseOtherValue(const KernelChange &change)
    {
        if (change.setting->rawValue && OutcomeOf(change) == Outcome::Other)
            Fail(ExitCode::CannotWrite, "line " + std::to_string(change.assignment->line) + ": " +
                                            change.setting->setting.name +
                                            ": the firmware took another value than the one that was written");
    }

    void Save(const KernelDevice &device, DeviceWork &work)
    {
        const std::error_code error =
            work.isBulk ? work.session->Write(device.PathOf(kSaveSettings), kSave) : std::error_code();
        if (error)
            Fail(CodeOf(*work.session, error),
                 "the settings of " + ShownText(device.name) + " were not saved: " + Reason(*work.session, error));
    }

    std::string Summary()
    {
        std::vector<std::string> old;
        std::vector<std::string> unknown;
        for (const KernelChange &change : m_changes)
        {
            const Outcome outcome = OutcomeOf(change);
            if (outcome == Outcome::Unreadable || outcome == Outcome::Other)
                unknown.push_back(change.setting->setting.name);
            else if (outcome == Outcome::Old)
                old.push_back(change.setting->setting.name);
        }
        std::string said =
            std::to_string(m_changes.size()) + " options programmed; they take effect with the next restart.";
        if (!old.empty())
            said += " These show their old value still: " + Join(old) + ".";
        if (!unknown.empty())
            said += " These could not be read back: " + Join(unknown) + ".";
        return said;
    }

    static ExitCode CodeOf(const KernelSession &session, const std::error_code &error)
    {
        return session.IsPasswordRefused() ? ExitCode::CannotWrite : CodeOfWriteFailure(error);
    }

    static std::string Reason(const KernelSession &session, const std::error_code &error)
    {
        return session.IsPasswordRefused()
                   ? "the driver does not take the administrator password (" + error.message() + ")"
                   : WriteFailure(error);
    }

    /// Puts back what was written, the last first, and throws.
    [[noreturn]] void Fail(ExitCode code, const std::string &reason)
    {
        std::vector<std::string> changed;
        const std::size_t count = m_written.size();
        for (auto written = m_written.rbegin(); written != m_written.rend(); ++written)
        {
            if (!PutBack(**written))
                changed.push_back((*written)->setting->setting.name);
        }
        for (auto &[device, work] : m_devices)
        {
            if (work.isBulk && !work.wasBulk)
                work.session->Write(device->PathOf(kSaveSettings), kSingle);
        }
        throw ToolError(code, reason + "; " +
                                  (!changed.empty() ? "these could not be put back and stay changed: " + Join(changed)
                                   : count > 0      ? "what had been written before was put back, nothing is changed"
                                                    : "nothing was changed"));
    }

    bool PutBack(const KernelChange &change)
    {
        const KernelSetting &setting = *change.setting;
        if (!setting.rawValue || SessionOf(change).Write(setting.PathOf(kCurrentValue), *setting.rawValue))
            return false;
        const Outcome outcome = OutcomeOf(change);
        return outcome == Outcome::Old || outcome == Outcome::Unreadable;
    }

    AttributeFiles &m_files;
    const std::vector<KernelChange> &m_changes;
    std::map<const KernelDevice *, DeviceWork> m_devices;
    std::vector<const KernelChange *> m_written;
};

} // namespace

const std::string &KernelPassword::For(const KernelDevice &device, const KernelAuthentication &authentication)
{
    const std::string name = ShownText(device.name);
    if (!authentication.mechanism.empty() && authentication.mechanism != kMechanism)
        throw ToolError(ExitCode::InterfaceDisabled, "the administrator of " + name + " is known by a " +
                                                         ShownText(authentication.mechanism) +
                                                         ", and this tool can send a password only");
    if (m_password.empty() && !m_configuration.passwordFile.empty())
        m_password = ReadSecretFile(m_configuration.passwordFile, "the administrator password", 1).front();
    else if (m_password.empty() && m_configuration.passwordDescriptor &&
             (!Platform::ReadLineOfDescriptor(*m_configuration.passwordDescriptor, m_password) || m_password.empty()))
        throw ToolError(ExitCode::Unreadable, "the administrator password cannot be read from file descriptor " +
                                                  std::to_string(*m_configuration.passwordDescriptor));
    if (m_password.empty())
        throw ToolError(ExitCode::InterfaceDisabled,
                        name + " asks for the administrator password; name the file that holds it in \"" +
                            ConfigurationPath() + "\" (password-file = ...)");
    const auto length = static_cast<std::int64_t>(m_password.size());
    // A driver may pass over a password of a length that it does not take, and the writing with it.
    const std::int64_t most = authentication.maxLength.value_or(0);
    if (length < authentication.minLength.value_or(0) || (most > 0 && length > most))
        throw ToolError(ExitCode::InterfaceDisabled,
                        "the administrator password has not a length that " + name + " takes");
    return m_password;
}

KernelSession::KernelSession(AttributeFiles &files, const KernelDevice &device, KernelPassword &password,
                             const WarningSink &warn)
    : m_files(files), m_device(device), m_warn(warn)
{
    const KernelAuthentication *const administrator = device.Administrator();
    if (!administrator)
        return;
    m_password = password.For(device, *administrator);
    m_passwordPath = device.name + "/authentication/" + administrator->entry + "/current_password";
}

KernelSession::~KernelSession()
{
    if (!m_isSent)
        return;
    try
    {
        const std::error_code error = m_files.Write(m_passwordPath, kNoPassword);
        if (error)
            m_warn("the driver of " + ShownText(m_device.name) +
                   " does not let the administrator password be cleared (" + error.message() +
                   "); it may keep it until the restart");
    }
    catch (const std::exception &)
    {
        // For want of memory; nobody can be told.
    }
}

std::error_code KernelSession::Write(const std::string &path, const std::string &text)
{
    const std::error_code error = SendPassword();
    m_isPasswordRefused = static_cast<bool>(error);
    return error ? error : m_files.Write(path, text.empty() ? "\n" : text);
}

std::error_code KernelSession::SendPassword()
{
    if (m_passwordPath.empty())
        return {};
    m_isSent = true;
    return m_files.Write(m_passwordPath, m_password);
}

std::string WriteChanges(AttributeFiles &files, const std::vector<KernelChange> &changes, KernelPassword &password,
                         const WarningSink &warn)
{
    const Platform::InterruptionHeldBack untilDone;
    return Writing(files, changes, password, warn).Run();
}
