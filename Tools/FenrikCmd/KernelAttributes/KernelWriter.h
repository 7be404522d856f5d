#pragma once

#include "KernelDevice.h"
#include "SettingsSource.h"

#include <string>
#include <vector>

/// One setting to be written.
struct KernelChange
{
    const Assignment *assignment = nullptr;
    const KernelDevice *device = nullptr;
    const KernelSetting *setting = nullptr;
    /// As the driver is to get it.
    std::string newText;
};

/// The administrator password, read when it is first needed.
class KernelPassword
{
public:
    explicit KernelPassword(const KernelConfiguration &configuration) : m_configuration(configuration) {}

    /// Throws ToolError: InterfaceDisabled where the configuration names none, or where `device` takes another kind or
    /// length, Unreadable where it cannot be read.
    const std::string &For(const KernelDevice &device, const KernelAuthentication &authentication);

private:
    const KernelConfiguration &m_configuration;
    std::string m_password;
};

/// Writes to one device on behalf of the administrator, where that one has a password: sends it before each write,
/// since some drivers forget it with every one, and clears it at the end, however that comes.
class KernelSession
{
public:
    /// Throws what KernelPassword::For throws; nothing has been written then. All of them outlive the object.
    KernelSession(AttributeFiles &files, const KernelDevice &device, KernelPassword &password, const WarningSink &warn);
    ~KernelSession();
    KernelSession(const KernelSession &) = delete;
    KernelSession &operator=(const KernelSession &) = delete;

    const KernelDevice &Device() const { return m_device; }

    /// Writes `text` with one call. No line feed is added, but to an empty text: a call with nothing does not reach a
    /// driver.
    std::error_code Write(const std::string &path, const std::string &text);

    /// Whether the last write failed because the driver did not take the password.
    bool IsPasswordRefused() const { return m_isPasswordRefused; }

private:
    std::error_code SendPassword();

    AttributeFiles &m_files;
    const KernelDevice &m_device;
    const WarningSink &m_warn;
    /// Empty where the device asks for none.
    std::string m_passwordPath;
    std::string m_password;
    bool m_isSent = false;
    bool m_isPasswordRefused = false;
};

/// Writes the changes, and puts back what was written when one of them fails. Returns the sentences for the user.
/// Throws ToolError, whose message says what could not be put back.
std::string WriteChanges(AttributeFiles &files, const std::vector<KernelChange> &changes, KernelPassword &password,
                         const WarningSink &warn);
