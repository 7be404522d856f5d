// What a Redfish service answers, any bytes: the current settings, those that wait, and the registry, with a line of
// three hyphens between them. What is no JSON is refused; of all else a dump is made, and every value that the dump
// offers can be sent.

#include "Credentials.h"
#include "Dump.h"
#include "Fuzzing.h"
#include "Messages.h"
#include "Service.h"
#include "SettingRecords.h"

#include <set>

namespace
{

using namespace Redfish;
using Fuzzing::Require;

constexpr std::string_view kBetween = "\n---\n";

std::string_view TakePart(std::string_view &text)
{
    const std::string_view part = text.substr(0, text.find(kBetween));
    text.remove_prefix(std::min(part.size() + kBetween.size(), text.size()));
    return part;
}

/// The settings of a machine that no service is needed for.
class ReadSource : public SettingsSource
{
public:
    explicit ReadSource(const MachineSettings &machine) : m_machine(machine) {}

    std::string Status() override { return {}; }
    std::vector<std::pair<std::string, std::string>> Machine() override { return {}; }
    bool ValuesNeedRights() override { return true; }
    std::optional<std::size_t> PendingCount() override { return CountWaiting(m_machine); }
    void List(const SettingVisitor &visit) override { ListSettings(m_machine, visit); }
    std::string Program(const std::vector<Assignment> & /*assignments*/) override { return {}; }
    PendingSettings Pending() override { return {}; }
    std::string Reset(const std::string & /*what*/) override { return {}; }

private:
    const MachineSettings &m_machine;
};

/// What holds for the settings one by one; the values of all choices and all current numbers are what can be sent.
WireValues RequireSoundSettings(const MachineSettings &machine)
{
    std::set<std::string> names;
    std::set<std::string> pages;
    std::string page;
    std::size_t waiting = 0;
    WireValues sendable;
    ListSettings(machine,
                 [&](Setting &setting)
                 {
                     Require(!setting.name.empty() && names.insert(setting.name).second, "a name is there once");
                     Require(setting.page == page || pages.insert(setting.page).second, "a page is in one piece");
                     page = setting.page;
                     waiting += setting.pendingValue ? 1 : 0;
                     Require(setting.limits.step != 0U, "a step is no 0");
                     for (const SettingChoice &choice : setting.choices)
                     {
                         const auto value =
                             ValueToSend(machine.registry.Find(setting.name), machine.bios.Find(setting.name),
                                         "0x" + std::string(1, "0123456789ABCDEF"[choice.number % 16]));
                         Require(value.has_value(), "a choice can be sent");
                         sendable.insert_or_assign(setting.name, *value);
                     }
                     return true;
                 });
    Require(waiting == CountWaiting(machine), "what waits is counted");
    return sendable;
}

void RequireSoundDump(const MachineSettings &machine)
{
    ReadSource source(machine);
    std::string dump;
    std::size_t count = 0;
    const auto toText = [&dump](std::string_view piece)
    {
        dump += piece;
        return true;
    };
    Require(WriteDump(source, "SYSTEM", toText, count), "a dump is written");
    Require(Fuzzing::Parse(dump) != nullptr, "a dump is XML");
    Require(Fuzzing::Count(dump, "<knob ") == count, "all settings are in the dump");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    std::string_view text = Fuzzing::Text(bytes, size);
    FindInNetrc(text, "bmc");
    MachineSettings machine;
    machine.page = "Firmware/X";
    std::string problem;
    Json json;
    const std::string_view bios = TakePart(text);
    const std::string_view waiting = TakePart(text);
    const bool isJson = ReadJson(bios, json, problem);
    if (isJson)
    {
        for (const std::vector<ServiceMessage> &messages : {MessagesOf(json), ApplyMessagesOf(json)})
            FailureSentences(messages);
        LocationFor(json, "en");
        MemberLinks(json);
    }
    const bool isRead = ReadAttributeResource(bios, machine.bios, problem);
    Require(isRead == isJson, "both readers take the same for JSON");
    if (!isRead)
        return 0;
    ReadAttributeResource(waiting, machine.waiting, problem);
    ReadRegistry(text, machine.registry, problem);
    const WireValues sendable = RequireSoundSettings(machine);
    FirstBarred(machine, sendable);
    const Json body = PatchBody(machine, sendable);
    Require(body.at("Attributes").size() >= sendable.size(), "all values are sent");
    RequireSoundDump(machine);
    return 0;
}
