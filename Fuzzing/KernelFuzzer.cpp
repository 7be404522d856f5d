// The files of one of the kernel's firmware settings, and its modifiers: the bytes are parted by zeros, a file each.
// Whatever they hold, there is a setting, its dump is XML, and a value that the dump has goes back as what it came
// from.

#include "Dump.h"
#include "Fuzzing.h"
#include "KernelSetting.h"

#include <stdexcept>

namespace
{

constexpr const char *kFiles[] = {"current_value",   "possible_values", "type",       "default_value",
                                  "display_name",    "elements",        "max_length", "min_length",
                                  "max_value",       "min_value",       "x_modifier", "scalar_increment",
                                  "x_value_modifier"};

/// A source with that setting alone.
class OneSetting : public SettingsSource
{
public:
    explicit OneSetting(Setting setting) : m_setting(std::move(setting)) {}

    std::string Status() override { return {}; }
    std::vector<std::pair<std::string, std::string>> Machine() override { return {{"devices", m_setting.name}}; }
    bool ValuesNeedRights() override { return false; }
    std::optional<std::size_t> PendingCount() override { return std::nullopt; }
    void List(const SettingVisitor &visit) override { visit(m_setting); }
    std::string Program(const std::vector<Assignment> & /*assignments*/) override { return {}; }
    PendingSettings Pending() override { return {}; }
    std::string Reset(const std::string & /*what*/) override { return {}; }

private:
    Setting m_setting;
};

RawSetting Part(std::string_view bytes)
{
    RawSetting raw = {"device", "", {}};
    raw.entry = bytes.substr(0, bytes.find('\0'));
    for (const char *const file : kFiles)
    {
        const std::size_t end = bytes.find('\0');
        if (end == std::string_view::npos)
            break;
        bytes.remove_prefix(end + 1);
        raw.files.push_back({file, {{}, std::string(bytes.substr(0, bytes.find('\0'))), true, true}});
    }
    return raw;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const KernelSetting made = MakeKernelSetting(Part(Fuzzing::Text(bytes, size)));
    OneSetting source(made.setting);
    std::string dump;
    std::size_t count = 0;
    const auto keep = [&dump](std::string_view piece)
    {
        dump += piece;
        return true;
    };
    Fuzzing::Require(WriteDump(source, "SYSTEM", keep, count) && count == 1, "there is a dump");
    Fuzzing::Require(Fuzzing::Parse(dump) != nullptr, "the dump is XML");
    if (!made.rawValue || made.isOrderedList)
        return 0;
    try
    {
        const std::string text = ToDriver(made, made.setting.currentValue);
        Fuzzing::Require(ToDump(made, text) == ToDump(made, *made.rawValue), "a value goes back as what it came from");
    }
    catch (const std::invalid_argument &)
    {
        // A current value that the driver does not list.
    }
    return 0;
}
