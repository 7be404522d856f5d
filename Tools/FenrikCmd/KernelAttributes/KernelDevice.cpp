#include "KernelDevice.h"

#include "KernelError.h"
#include "Number.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <unordered_map>

namespace
{

constexpr std::string_view kAdministratorRole = "bios-admin";

/// How the folder "attributes" marks what is no setting, and where that is noted.
struct SpecialFile
{
    std::string_view name;
    bool KernelDevice::*mark;
};

constexpr SpecialFile kSpecialFiles[] = {{kPendingReboot, &KernelDevice::hasPendingReboot},
                                         {kResetBios, &KernelDevice::hasResetBios},
                                         {kSaveSettings, &KernelDevice::hasSaveSettings}};

bool IsSameWord(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](unsigned char one, unsigned char other) { return std::tolower(one) == std::tolower(other); });
}

KernelAuthentication ReadAuthentication(AttributeFiles &files, const std::string &device, const std::string &entry)
{
    const std::string folder = device + "/authentication/" + entry + "/";
    const auto number = [&](const char *file) -> std::optional<std::int64_t>
    {
        const std::optional<std::string> text = ReadText(files, folder + file);
        return text ? ParseSignedNumber(*text) : std::nullopt;
    };
    return {entry,
            ReadText(files, folder + "role").value_or(""),
            ReadText(files, folder + "mechanism").value_or(""),
            number("is_enabled") == 1,
            number("min_password_length"),
            number("max_password_length")};
}

/// Reads a device; nothing where it has no folder "attributes".
std::optional<KernelDevice> ReadDevice(AttributeFiles &files, const std::string &name)
{
    std::vector<Platform::FolderEntry> entries;
    const std::error_code error = files.List(name + "/attributes", entries);
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        return std::nullopt;
    if (error)
        throw ToolError(ExitCode::Unreadable,
                        "the settings of " + ShownText(name) + " cannot be listed: " + ReadFailure(error));
    KernelDevice device;
    device.name = name;
    for (Platform::FolderEntry &entry : entries)
    {
        if (entry.isFolder)
            device.entries.push_back(std::move(entry.name));
        else
        {
            for (const SpecialFile &special : kSpecialFiles)
                device.*special.mark = device.*special.mark || special.name == entry.name;
        }
    }
    // A device may have no passwords at all.
    if (files.List(name + "/authentication", entries))
        entries.clear();
    for (const Platform::FolderEntry &entry : entries)
    {
        if (entry.isFolder)
            device.authentications.push_back(ReadAuthentication(files, name, entry.name));
    }
    return device;
}

RawSetting ReadSetting(AttributeFiles &files, const std::string &device, const std::string &entry)
{
    RawSetting raw = {device, entry, {}};
    const std::string folder = device + "/attributes/" + entry;
    std::vector<Platform::FolderEntry> entries;
    const std::error_code error = files.List(folder, entries);
    if (error)
        raw.files.push_back({kCurrentValue, {error, "", false, false}});
    for (const Platform::FolderEntry &file : entries)
    {
        if (!file.isFolder && RawSetting::Takes(file.name))
            raw.files.emplace_back(file.name, files.Read(folder + "/" + file.name));
    }
    return raw;
}

void TellNamesApart(std::vector<KernelSetting> &settings)
{
    std::unordered_map<std::string, int> counts;
    for (const KernelSetting &setting : settings)
        ++counts[setting.setting.name];
    for (KernelSetting &setting : settings)
    {
        if (counts[setting.setting.name] > 1)
            setting.setting.name = ShownText(setting.device) + "/" + setting.setting.name;
    }
}

} // namespace

const KernelAuthentication *KernelDevice::Administrator() const
{
    const auto found =
        std::find_if(authentications.begin(), authentications.end(),
                     [](const KernelAuthentication &authentication)
                     { return authentication.isEnabled && IsSameWord(authentication.role, kAdministratorRole); });
    return found == authentications.end() ? nullptr : &*found;
}

std::string KernelDevice::PathOf(std::string_view file) const
{
    return name + "/attributes/" + std::string(file);
}

std::optional<std::string> ReadText(AttributeFiles &files, const std::string &path)
{
    Platform::FileText file = files.Read(path);
    return file.error ? std::nullopt : std::optional(WithoutLineFeed(std::move(file.bytes)));
}

std::vector<KernelDevice> ReadDevices(AttributeFiles &files, const std::string &root)
{
    std::vector<Platform::FolderEntry> entries;
    const std::error_code error = files.List("", entries);
    const bool isMissing = error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
    if (error && !isMissing)
        throw ToolError(ExitCode::Unreadable, "the folder \"" + root + "\" cannot be read: " + ReadFailure(error));
    std::vector<KernelDevice> devices;
    for (const Platform::FolderEntry &entry : entries)
    {
        std::optional<KernelDevice> device =
            entry.isFolder ? ReadDevice(files, entry.name) : std::optional<KernelDevice>();
        if (device)
            devices.push_back(std::move(*device));
    }
    if (devices.empty())
        throw ToolError(
            ExitCode::InterfaceDisabled,
            (isMissing ? "there is no folder \"" + root + "\"" : "there is no device in \"" + root + "\"") +
                ": the kernel shows no firmware settings of this machine; it takes Linux 5.11 or later with "
                "a driver for this machine");
    return devices;
}

std::vector<KernelSetting> ReadSettings(AttributeFiles &files, const std::vector<KernelDevice> &devices)
{
    std::vector<KernelSetting> settings;
    for (const KernelDevice &device : devices)
    {
        settings.reserve(settings.size() + device.entries.size());
        std::transform(device.entries.begin(), device.entries.end(), std::back_inserter(settings),
                       [&](const std::string &entry)
                       { return MakeKernelSetting(ReadSetting(files, device.name, entry)); });
    }
    TellNamesApart(settings);
    return settings;
}
