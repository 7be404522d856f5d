#include "Firmware.h"

#include "KnobImage.h"
#include "Platform.h"
#include "ToolError.h"
#include "WholeFile.h"

#include <cerrno>
#include <nlohmann/json.hpp>

namespace
{

constexpr const char *kFileName = "FenrikFirmware.json";
constexpr int kFormat = 1;

/// What the owner of the machine has changed before it came to us, the energy bias by software and to a value that
/// the setup does not list.
constexpr std::pair<const char *, const char *> kOwnersValues[] = {
    {"CpuBoostClock", "0x0"},      {"AssetTag", "Prüfstand 4 / Gestell \"B\""},
    {"MemSpeedCeiling", "0x4"},    {"MemScrubInterval", "0xC"},
    {"CpuEnergyBias", "0x5"},      {"UsbFrontPorts", "0x0"},
    {"BootQuietScreen", "0x0"},    {"BmcHostName", "rack12-node07"},
    {"PcieSlot3LinkWidth", "0x3"}, {"SerialConsoleBaud", "0x1"},
};

ToolError Unreadable(const std::string &path, const std::string &reason)
{
    return {ExitCode::Unreadable, "the firmware file \"" + path + "\" " + reason +
                                      "; it is left as it is, \"reset\" puts a new one in its place"};
}

/// Whether there is nothing at `path`, which is not the same as a file that cannot be read.
bool IsMissing(const std::string &path)
{
    errno = 0;
    return !Platform::OpenStream(path, "rb") && errno == ENOENT;
}

Firmware FromJson(const nlohmann::json &json)
{
    Firmware firmware;
    if (json.at("format").get<int>() != kFormat)
        throw std::runtime_error("unknown format");
    json.at("options").get_to(firmware.knobCount);
    json.at("interfaceEnabled").get_to(firmware.interfaceEnabled);
    json.at("current").get_to(firmware.current);
    json.at("pending").get_to(firmware.pending);
    if (firmware.knobCount == 0 || firmware.knobCount > kLargestKnobCount)
        throw std::runtime_error("impossible number of options");
    return firmware;
}

} // namespace

Firmware DefaultFirmware()
{
    Firmware firmware = GeneratedFirmware(DefaultKnobCount());
    firmware.current.insert(std::begin(kOwnersValues), std::end(kOwnersValues));
    return firmware;
}

Firmware GeneratedFirmware(std::uint32_t knobCount)
{
    Firmware firmware;
    firmware.knobCount = knobCount;
    return firmware;
}

void Restart(Firmware &firmware)
{
    for (auto &[name, value] : firmware.pending)
        firmware.current.insert_or_assign(name, std::move(value));
    firmware.pending.clear();
}

std::string FirmwarePath()
{
    return Platform::ExecutableDirectory() + kFileName;
}

Firmware LoadFirmware(const std::string &path)
{
    if (IsMissing(path))
        SaveFirmware(DefaultFirmware(), path);
    std::string text;
    if (!Platform::ReadTextFile(path, text))
        throw Unreadable(path, "cannot be read");
    try
    {
        return FromJson(nlohmann::json::parse(text));
    }
    catch (const std::bad_alloc &)
    {
        throw;
    }
    catch (const std::exception &error)
    {
        throw Unreadable(path, std::string("is damaged (") + error.what() + ")");
    }
}

void SaveFirmware(const Firmware &firmware, const std::string &path)
{
    const nlohmann::ordered_json json = {{"format", kFormat},
                                         {"options", firmware.knobCount},
                                         {"interfaceEnabled", firmware.interfaceEnabled},
                                         {"current", firmware.current},
                                         {"pending", firmware.pending}};
    const std::string text = json.dump(4) + "\n";
    WriteWholeFile(path, [&text](std::FILE *stream) { return Platform::WriteText(stream, text); });
}
