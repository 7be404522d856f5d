// The dump, through the module: the report is a document, and it has a row for every option that was read.

#include "BiosConfiguration.h"
#include "Fuzzing.h"
#include "KnobDump.h"
#include "Platform.h"

#include <libxml/xmlstring.h>
#include <nlohmann/json.hpp>

namespace
{

constexpr const char *kToolPlace = "Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/";
constexpr const char *kCapabilities =
    R"({"Tarnwell": {"CapabilityList": {"BIOS Options": [{"Name": "Bios", "Description": "All"}]}}})";

/// The module on a machine of its own.
BiosConfigModule &Module()
{
    static BiosConfigModule module;
    static const bool ready = []
    {
        std::filesystem::create_directories(Fuzzing::Directory() + kToolPlace);
        Platform::WriteEnvironmentVariable("ProgramFiles", Fuzzing::Directory());
        Fuzzing::WriteFile("CapsList.json", kCapabilities);
        std::vector<Cap *> caps;
        const Status status = module.InitModule(caps, {{"toolxmlpath", Fuzzing::Directory()}});
        for (const Cap *cap : caps)
            delete cap;
        return status == StatusCode::Success;
    }();
    Fuzzing::Require(ready, "the module is ready");
    return module;
}

std::string Report(OutputKind kind)
{
    std::string report = "before";
    Fuzzing::Require(Module().GetData("all", &kind, &report) == StatusCode::Success, "a report is made");
    return report;
}

bool IsUtf8(const KnobList &knobs)
{
    const auto isUtf8 = [](const KnobDetails::Text &text)
    { return xmlCheckUTF8(reinterpret_cast<const xmlChar *>(text.c_str())) != 0; };
    for (const KnobDetails &knob : knobs)
    {
        bool holds = true;
        for (const auto *const text : {&knob.name, &knob.prompt, &knob.description, &knob.SetupPgPtr, &knob.CurrentVal})
            holds = holds && isUtf8(*text);
        for (const auto &[text, value] : knob.options)
            holds = holds && isUtf8(text);
        if (!holds)
            return false;
    }
    return true;
}

/// The groups' parts called `rows`, all together.
std::size_t CountRows(const nlohmann::json &parent)
{
    std::size_t rows = 0;
    for (const auto &group : parent.at("groups"))
        rows += group.at("items").size();
    return rows;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Module();
    Fuzzing::WriteFile(Fuzzing::Directory() + kToolPlace + "FenrikOutput.xml", Fuzzing::Text(bytes, size));
    std::filesystem::remove(Fuzzing::Directory() + "Error.xml");
    const std::string xml = Report(OutputKind::UiXml);
    Fuzzing::Require(Fuzzing::Parse(xml) != nullptr, "the report in XML is a document");
    KnobList knobs;
    const bool read = readKnob(knobs, "") == StatusCode::Success;
    Fuzzing::Require(read == !knobs.IsEmpty(), "a dump that was read has options");
    // A row that holds the marker starts a group and is none itself.
    for (const KnobDetails &knob : knobs)
    {
        for (const auto *const text : {&knob.name, &knob.prompt, &knob.description, &knob.CurrentVal})
        {
            if (text->find("#GROUPNAME") != KnobDetails::Text::npos)
                return 0;
        }
        if (!knob.options.empty())
        {
            for (const auto &[text, value] : knob.options)
            {
                if (text.find("#GROUPNAME") != KnobDetails::Text::npos)
                    return 0;
            }
        }
    }
    const std::size_t expected = read ? knobs.Size() : 1;
    Fuzzing::Require(Fuzzing::Count(xml, "<Row>") == expected, "every option has its row in XML");
    const std::string json = Report(OutputKind::LogJson);
    if (json == "before")
        Fuzzing::Require(!IsUtf8(knobs), "only text that is not UTF-8 is kept from JSON");
    else
        Fuzzing::Require(CountRows(nlohmann::json::parse(json)) == expected, "every option has its row in JSON");
    return 0;
}
