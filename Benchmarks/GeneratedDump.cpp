#include "GeneratedDump.h"

#include <array>
#include <cstdio>

namespace
{

constexpr std::array kPages = {"Main/Board",
                               "Advanced/Processor/Power",
                               "Advanced/Memory/Timing",
                               "Advanced/PCI/Slots",
                               "Platform/Fans",
                               "Platform/Sensors",
                               "Storage/NVMe",
                               "Network/Adapters",
                               "Security/Keys",
                               "Boot/Order",
                               "Server/Console",
                               "Overclock/Voltage"};

constexpr std::array kSubjects = {"Link speed of lane group",
                                  "Refresh interval of channel",
                                  "Wake on event source",
                                  "Error threshold & response",
                                  "Idle state of core",
                                  "Gr\xC3\xB6\xC3\x9F"
                                  "e of aperture"};

constexpr const char *kHelp =
    "Selects how the firmware sets this part up before it hands over to the operating system. "
    "The change takes effect after the next restart; the default suits most machines.";

std::string Number(const char *format, std::size_t number)
{
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string Escaped(std::string text)
{
    for (std::size_t found = text.find('&'); found != std::string::npos; found = text.find('&', found + 1))
        text.insert(found + 1, "amp;");
    return text;
}

void AppendOptions(std::string &dump, std::size_t count)
{
    dump += ">\r\n\t\t\t<options>\r\n";
    for (std::size_t option = 0; option < count; ++option)
    {
        dump += "\t\t\t\t<option text=\"" + Number(option == 0 ? "Disabled" : "Level %zu", option) + "\" value=\"" +
                Number("0x%zX", option) + "\"/>\r\n";
    }
    dump += "\t\t\t</options>\r\n\t\t</knob>\r\n";
}

void AppendKnob(std::string &dump, std::size_t index)
{
    const std::size_t options = index % 4 == 3 ? 0 : 2 + index % 4;
    const auto attribute = [&dump](const char *name, const std::string &value)
    { dump.append(1, ' ').append(name).append("=\"").append(Escaped(value)).append(1, '"'); };
    dump += "\t\t<knob";
    attribute("type", "scalar");
    attribute("setupType", options == 0 ? "numeric" : options == 2 ? "checkbox" : "oneof");
    attribute("name", Number("Knob%06zu", index));
    attribute("varstoreIndex", Number("%02zu", index % 9));
    attribute("prompt", kSubjects[index % kSubjects.size()] + Number(" %zu", index));
    attribute("description", kHelp + Number(" Entry %zu.", index));
    attribute("UqiVal", Number("6 0038 0032 0031 %04zx", index % 0xFFFF));
    attribute("size", "1");
    attribute("offset", Number("0x%05zX", index));
    attribute("depex", Number("Sif ( Knob%06zu _EQU_ 0x1 )", index / 2));
    attribute("SetupPgPtr", kPages[index / 40 % kPages.size()] + Number("/Page %zu", index % 7));
    attribute("default", "0x0");
    attribute("CurrentVal", Number("0x%zX", options == 0 ? index : index % options));
    if (options == 0)
        dump += "/>\r\n";
    else
        AppendOptions(dump, options);
}

} // namespace

std::string GenerateDump(std::size_t knobs)
{
    std::string dump = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<SYSTEM>\r\n\t<biosknobs>\r\n";
    for (std::size_t index = 0; index < knobs; ++index)
        AppendKnob(dump, index);
    dump += "\t</biosknobs>\r\n</SYSTEM>\r\n";
    return dump;
}
