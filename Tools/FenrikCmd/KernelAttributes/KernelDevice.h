#pragma once

#include "KernelSetting.h"

#include <optional>
#include <string>
#include <vector>

/// One folder of a device's folder "authentication".
struct KernelAuthentication
{
    std::string entry;
    std::string role;
    /// Empty where the driver does not say.
    std::string mechanism;
    bool isEnabled = false;
    std::optional<std::int64_t> minLength;
    std::optional<std::int64_t> maxLength;
};

/// A device of the class, without its settings.
struct KernelDevice
{
    std::string name;
    /// The files of its folder "attributes" that are no settings.
    bool hasPendingReboot = false;
    bool hasResetBios = false;
    bool hasSaveSettings = false;
    /// Its entries that are settings, in byte-wise order.
    std::vector<std::string> entries;
    std::vector<KernelAuthentication> authentications;

    /// The administrator's, where it is enabled; null otherwise.
    const KernelAuthentication *Administrator() const;

    /// The path of one of those files.
    std::string PathOf(std::string_view file) const;
};

inline constexpr const char *kPendingReboot = "pending_reboot";
inline constexpr const char *kResetBios = "reset_bios";
inline constexpr const char *kSaveSettings = "save_settings";

/// The devices of the class in byte-wise order: the folders that have a folder "attributes". Throws ToolError:
/// InterfaceDisabled where there is no class or no device, Unreadable where the system refuses to show it. `root` is
/// what messages call the class's folder.
std::vector<KernelDevice> ReadDevices(AttributeFiles &files, const std::string &root);

/// The settings of the devices. A name that several devices have gets its device in front, "device/name". A setting
/// whose folder cannot be read is there without a value.
std::vector<KernelSetting> ReadSettings(AttributeFiles &files, const std::vector<KernelDevice> &devices);

/// The text of a device's file, without a line feed at its end; nothing where it cannot be read.
std::optional<std::string> ReadText(AttributeFiles &files, const std::string &path);
