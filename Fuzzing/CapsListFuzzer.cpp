// CapsList.json: the capabilities are those that the whole document, read once more with other means, has.

#include "Fuzzing.h"
#include "LowerAscii.h"
#include "XMLReaderLib.h"

#include <nlohmann/json.hpp>

namespace
{

using Names = std::vector<std::string>;
using Json = nlohmann::json;

constexpr const char *kModule = "BIOS Options";

/// Whether the document is a list of capabilities; then also their names.
bool Expected(std::string_view text, Names &names, Names &descriptions)
{
    try
    {
        const Json list = Json::parse(text).at("Tarnwell").at("CapabilityList").at(kModule);
        if (!list.is_structured())
            return false;
        for (const Json &capability : list)
        {
            names.push_back(LowerAscii(capability.at("Name").get<std::string>()));
            descriptions.push_back(capability.at("Description").get<std::string>());
        }
        return true;
    }
    catch (const Json::exception &)
    {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string file = Fuzzing::Directory() + "CapsList.json";
    Fuzzing::WriteFile(file, Fuzzing::Text(bytes, size));
    XMLReaderLib::InitializeXMLPath(Fuzzing::Directory());
    Names names, descriptions, expectedNames, expectedDescriptions;
    const Status status = XMLReaderLib::GetCapabilityList(kModule, &names, &descriptions);
    std::string text;
    XMLReaderLib::ReadWholeFile(file, &text);
    if (!Expected(text, expectedNames, expectedDescriptions))
    {
        Fuzzing::Require(status != StatusCode::Success, "what is no list is refused");
        Fuzzing::Require(names.empty() && descriptions.empty(), "a refused list gives nothing");
        return 0;
    }
    Fuzzing::Require(status == StatusCode::Success, "a list is taken");
    Fuzzing::Require(names == expectedNames && descriptions == expectedDescriptions, "texts come back");
    return 0;
}
