#include "Machine.h"

#include <algorithm>

namespace Redfish
{

namespace
{

constexpr long kNotFound = 404;

/// What two bytes a file begins with that gzip has made.
constexpr std::string_view kGzipMark = "\x1F\x8B";

AttributeResource Attributes(Service &service, const HttpAnswer &answer, const std::string &what)
{
    AttributeResource resource;
    std::string problem;
    if (!ReadAttributeResource(answer.body, resource, problem))
        throw ToolError(ExitCode::Unreadable,
                        "the answer of " + service.Connection().Name() + " for " + what + ' ' + problem);
    if (Find(resource.other, {"error"}))
        throw service.Refusal(answer, "reading " + what);
    return resource;
}

HttpAnswer GetThrough(Service &service, const std::string &link, bool goesThrough)
{
    return service.Connection().Send({HttpMethod::Get, link, {}, {}, false, goesThrough});
}

bool HasControls(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](unsigned char character) { return character < 0x20; });
}

} // namespace

void ReadCurrent(Service &service, Machine &machine, bool goesThrough)
{
    const HttpAnswer answer = GetThrough(service, machine.biosLink, goesThrough);
    if (!answer.IsSuccess())
        throw service.Refusal(answer, "reading the settings");
    AttributeResource bios = Attributes(service, answer, "the settings");
    if (!bios.hasAttributes)
        throw ToolError(ExitCode::Unreadable,
                        "the service at " + service.Connection().Name() + " tells of no settings (Attributes)");
    machine.settings.bios = std::move(bios);
}

void ReadBios(Service &service, const RedfishConfiguration &configuration, Machine &machine)
{
    const std::string link = FindSystem(service, configuration.system, machine.system);
    machine.name = TextAt(machine.system, {"Id"});
    if (machine.name.empty())
        machine.name = LastPart(link);
    machine.settings.page = "Firmware/" + machine.name;
    machine.biosLink = LinkAt(machine.system, {"Bios"});
    if (machine.biosLink.empty())
        throw ToolError(ExitCode::InterfaceDisabled,
                        service.Presentable("the system \"" + machine.name + "\" at " + service.Connection().Name() +
                                            " tells of no firmware settings (Bios)"));
    ReadCurrent(service, machine);
    machine.settingsLink = LinkAt(machine.settings.bios.other, {"@Redfish.Settings", "SettingsObject"});
}

void ReadWaiting(Service &service, Machine &machine, bool goesThrough)
{
    if (machine.settingsLink.empty())
        return;
    const HttpAnswer answer = GetThrough(service, machine.settingsLink, goesThrough);
    if (answer.status == kNotFound)
    {
        machine.settingsLink.clear();
        return;
    }
    if (!answer.IsSuccess())
        throw service.Refusal(answer, "reading what waits for the restart");
    machine.settings.waiting = Attributes(service, answer, "what waits for the restart");
    machine.tellsWaiting = machine.settings.waiting.hasAttributes;
    machine.entityTag = answer.entityTag;
    if (machine.entityTag.empty())
        machine.entityTag = TextAt(machine.settings.waiting.other, {"@odata.etag"});
    // It goes into a header line.
    if (HasControls(machine.entityTag))
        machine.entityTag.clear();
}

void ReadMachineRegistry(Service &service, const RedfishConfiguration &configuration, const WarningSink &warn,
                         Machine &machine)
{
    const std::string name = TextAt(machine.settings.bios.other, {"AttributeRegistry"});
    const std::string link = FindRegistry(service, name, configuration.language);
    const std::string instead = "; all settings are texts without choices, limits and help";
    if (link.empty())
    {
        warn(service.Presentable("the service has no registry of its settings" + (name.empty() ? "" : ", " + name) +
                                 instead));
        return;
    }
    const HttpAnswer answer = service.Get(link, "the registry of the settings");
    std::string problem;
    if (!ReadRegistry(answer.body, machine.settings.registry, problem))
    {
        if (answer.body.starts_with(kGzipMark))
            problem = "is compressed and does not say so";
        throw ToolError(ExitCode::Unreadable, "the answer of " + service.Connection().Name() +
                                                  " for the registry of the settings " + problem);
    }
    if (machine.settings.registry.attributes.empty())
        warn("the registry of the settings is empty" + instead);
}

} // namespace Redfish
