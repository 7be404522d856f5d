// What a Redfish service says, as records and sentences. How the tool works with a whole one is seen by
// Tests/check-redfish.py.

#include "Credentials.h"
#include "HttpConnection.h"
#include "Messages.h"
#include "Service.h"
#include "SettingRecords.h"

#include <gtest/gtest.h>

namespace
{

using namespace Redfish;

constexpr const char *kBios =
    R"({"Id": "Bios", "Attributes": {"Mode": "Auto", "Fast": false, "Limit": 7, "Count": "12", "Odd": {"x": [1]},
    "None": null, "Ratio": 1.5, "Loose": true, "Twice": 1, "Twice": 2, "Old": "a"}, "Attributes2": [{"Attributes": {"y": 1}}],
    "@Redfish.Settings": {"SupportedApplyTimes": ["Immediate", "OnReset"]}})";

constexpr const char *kRegistry =
    R"({"Id": "R", "Other": {"Attributes": [{"AttributeName": "No"}]}, "RegistryEntries": {
    "Menus": [{"MenuPath": "./A", "DisplayName": "First/Page"}, {"MenuPath": "./A/B", "DisplayName": ""}],
    "Attributes": [
    {"AttributeName": "Mode", "Type": "Enumeration", "MenuPath": "./A/B", "DefaultValue": "Off", "Other": {"Type": "String"},
     "Value": [{"ValueName": "Off", "ValueDisplayName": "Is off"}, {"ValueName": "On", "ValueDisplayName": "Same"},
               {"ValueName": "Auto", "ValueDisplayName": "Same"}]},
    {"AttributeName": "Fast", "Type": "Boolean", "DefaultValue": true, "MenuPath": "Plain"},
    {"AttributeName": "Limit", "Type": "Integer", "LowerBound": "-5", "UpperBound": 10.5, "ScalarIncrement": 0, "Hidden": true, "MenuPath": "./A/B"},
    {"AttributeName": "Count", "Type": "Integer", "LowerBound": 0, "ScalarIncrement": 4, "GrayOut": true},
    {"AttributeName": "Mode", "Type": "String"}, {"AttributeName": ""}, {"Type": "String"}, "text", [7],
    {"AttributeName": "Word", "Type": "Password", "MinLength": 6, "MaxLength": -1, "DefaultValue": "secret"},
    {"AttributeName": "Old", "Type": "String", "WarningText": "Beware.", "HelpText": "Old.", "Immutable": true}],
    "Dependencies": [7, {"Dependency": {"MapToAttribute": "Mode"}}, {"Dependency": DEPENDENCY}]}})";

constexpr const char *kNoDependency = R"({"MapToAttribute": "Nobody", "MapFrom": []})";

void Read(MachineSettings &machine, const std::string &dependency = kNoDependency, const std::string &waiting = "{}")
{
    std::string problem;
    std::string registry = kRegistry;
    const std::string place = "DEPENDENCY";
    registry.replace(registry.find(place), place.size(), dependency);
    machine.page = "Firmware/X";
    EXPECT_TRUE(ReadAttributeResource(kBios, machine.bios, problem)) << problem;
    EXPECT_TRUE(ReadAttributeResource(waiting, machine.waiting, problem)) << problem;
    EXPECT_TRUE(ReadRegistry(registry, machine.registry, problem)) << problem;
}

std::string Describe(const Setting &setting)
{
    std::string text = setting.name + "|" + setting.page + "|" + setting.currentValue + "|" +
                       setting.defaultValue.value_or("none") + "|" + setting.pendingValue.value_or("none") + "|" +
                       setting.unreadable + "|" + (setting.isReadOnly ? "fixed" : "") + "|" +
                       (setting.state == SettingState::Open     ? ""
                        : setting.state == SettingState::Hidden ? "hidden"
                                                                : "locked") +
                       "|";
    for (const SettingChoice &choice : setting.choices)
        text += choice.text + "=" + std::to_string(choice.number) + " ";
    const auto limit = [](const auto &number) { return number ? std::to_string(*number) : std::string("-"); };
    const SettingLimits &limits = setting.limits;
    return text + limit(limits.minimum) + limit(limits.maximum) + limit(limits.step) + limit(limits.minLength) +
           limit(limits.maxLength);
}

TEST(Redfish, SettingsAreWhatRegistryAndMachineSay)
{
    MachineSettings machine;
    Read(
        machine, kNoDependency,
        R"({"Attributes": {"Mode": "On", "Fast": null, "Count": 12, "Loose": false, "Word": "secret", "Strange": 1}})");
    const std::vector<std::string> expected = {"Mode|First-Page/B|0x2|0x0|0x1||||Off=0 On=1 Auto=2 -----",
                                               "Limit|First-Page/B|0x7|none|none||||-5----",
                                               "Fast|Plain|0x0|0x1|none||||False=0 True=1 -----",
                                               "Count|Firmware/X|0xC|none|none|||locked|0-4--",
                                               "Word|Firmware/X||none|none|it is a secret|||---6-",
                                               "Old|Firmware/X|a|none|none||fixed||-----",
                                               "Odd|Firmware/X||none|none|the machine knows no value for it|||-----",
                                               "None|Firmware/X||none|none|the machine knows no value for it|||-----",
                                               "Ratio|Firmware/X|1.5|none|none||||-----",
                                               "Loose|Firmware/X|true|none|false||||-----",
                                               "Twice|Firmware/X|2|none|none||||-----"};
    std::vector<std::string> found;
    ListSettings(machine,
                 [&found](Setting &setting)
                 {
                     found.push_back(Describe(setting));
                     return true;
                 });
    EXPECT_EQ(found, expected);
    EXPECT_EQ(CountWaiting(machine), 2U);
    EXPECT_TRUE(machine.bios.other.contains("Attributes2"));
}

TEST(Redfish, AnswersThatAreNoneAreRefused)
{
    std::string problem;
    Json json;
    AttributeResource resource;
    Registry registry;
    for (const char *const text : {"", "{", "{\"a\": \"\xFF\"}", "{} x", "{\"Attributes\": {\"a\":", "\x1F\x8B"})
    {
        EXPECT_FALSE(ReadJson(text, json, problem)) << text;
        EXPECT_FALSE(ReadAttributeResource(text, resource, problem)) << text;
        EXPECT_FALSE(ReadRegistry(text, registry, problem)) << text;
        EXPECT_TRUE(problem.starts_with("is not JSON (byte ")) << problem;
    }
    for (const char *const text : {"[]", "7", "null", "[{\"Attributes\": {}}]"})
        EXPECT_FALSE(ReadAttributeResource(text, resource, problem)) << text;
    EXPECT_TRUE(ReadRegistry("{\"RegistryEntries\": {\"Attributes\": {\"AttributeName\": \"x\"}}}", registry, problem));
    EXPECT_TRUE(registry.attributes.empty());
}

struct DependencyCase
{
    const char *property;
    const char *value;
    const char *conditions;
    bool isLocked;
    bool isHidden;
    const char *text;
};

// Of the attribute Limit, which the registry hides for good; Mode is 0x2, Fast 0x0, Count 12.
constexpr DependencyCase kDependencies[] = {
    {"ReadOnly", "true", R"({"MapFromAttribute": "Mode", "MapFromCondition": "EQU", "MapFromValue": "Auto"})", true,
     false, "GrayIf(Mode == 0x2)"},
    {"GrayOut", "true", R"({"MapFromAttribute": "Mode", "MapFromCondition": "NEQ", "MapFromValue": "Auto"})", false,
     false, "GrayIf(Mode != 0x2)"},
    {"Hidden", "true",
     R"({"MapFromAttribute": "Fast", "MapFromProperty": "CurrentValue", "MapFromCondition": "EQU", "MapFromValue": true})",
     false, true, "HideIf(Fast == 0x1)"},
    {"Hidden", "false", R"({"MapFromAttribute": "Fast", "MapFromCondition": "EQU", "MapFromValue": false})", false,
     false, "HideUnless(Fast == 0x0)"},
    {"ReadOnly", "true", R"({"MapFromAttribute": "Count", "MapFromCondition": "GTR", "MapFromValue": 9},
        {"MapFromAttribute": "Count", "MapFromCondition": "LEQ", "MapFromValue": 12, "MapTerms": "AND"})",
     true, false, "GrayIf(Count > 0x9 and Count <= 0xC)"},
    {"ReadOnly", "true", R"({"MapFromAttribute": "Count", "MapFromCondition": "LSS", "MapFromValue": 9},
        {"MapFromAttribute": "Loose", "MapFromCondition": "EQU", "MapFromValue": true, "MapTerms": "OR"})",
     true, false, "GrayIf(Count < 0x9 or Loose == true)"},
    {"ReadOnly", "true", R"({"MapFromAttribute": "Gone", "MapFromCondition": "EQU", "MapFromValue": 1},
        {"MapFromAttribute": "Count", "MapFromCondition": "GEQ", "MapFromValue": -1, "MapTerms": "OR"})",
     true, false, "GrayIf(Gone == 0x1 or Count >= -1)"},
    {"ReadOnly", "true", R"({"MapFromAttribute": "Gone", "MapFromCondition": "NEQ", "MapFromValue": 1},
        {"MapFromAttribute": "Count", "MapFromCondition": "EQU", "MapFromValue": 12, "MapTerms": "AND"})",
     false, false, "GrayIf(Gone != 0x1 and Count == 0xC)"},
    {"ReadOnly", "true", R"({"MapFromAttribute": "Mode", "MapFromCondition": "GTR", "MapFromValue": "A"})", false,
     false, "GrayIf(Mode > \"A\")"},
    {"ReadOnly", "true",
     R"({"MapFromAttribute": "Count", "MapFromProperty": "GrayOut", "MapFromCondition": "EQU", "MapFromValue": true})",
     true, false, "GrayIf(Count.GrayOut == true)"},
    {"ReadOnly", "true",
     R"({"MapFromAttribute": "Count", "MapFromProperty": "ScalarIncrement", "MapFromCondition": "EQU", "MapFromValue": 4})",
     true, false, "GrayIf(Count.ScalarIncrement == 0x4)"},
    {"ReadOnly", "true",
     R"({"MapFromAttribute": "Mode", "MapFromProperty": "DefaultValue", "MapFromCondition": "EQU", "MapFromValue": "Off"})",
     true, false, "GrayIf(Mode.DefaultValue == \"Off\")"},
    {"ReadOnly", "\"yes\"", R"({"MapFromAttribute": "Count", "MapFromCondition": "ODD", "MapFromValue": 4})", false,
     false, "ReadOnly = \"yes\" If(Count ODD 0x4)"},
    {"DefaultValue", "3", R"({"MapFromAttribute": "Fast", "MapFromCondition": "EQU", "MapFromValue": null})", false,
     false, "DefaultValue = 0x3 If(Fast == none)"},
};

TEST(Redfish, DependenciesAreToldAndJudged)
{
    for (const DependencyCase &row : kDependencies)
    {
        MachineSettings machine;
        Read(machine, std::string(R"({"MapToAttribute": "Limit", "MapToProperty": ")") + row.property +
                          R"(", "MapToValue": )" + row.value + R"(, "MapFrom": [)" + row.conditions + "]}");
        const std::size_t place = machine.registry.PlaceOf("Limit").value();
        const Access access =
            JudgeAccess(machine.registry, [&](std::string_view name) { return machine.bios.Find(name); })[place];
        const bool hidesForGood = row.property == std::string("Hidden") && row.value == std::string("true");
        EXPECT_EQ(access.isLocked, row.isLocked) << row.text;
        EXPECT_EQ(access.isHidden, row.isHidden || hidesForGood) << row.text;
        EXPECT_EQ(DependencyTexts(machine.registry)[place], row.text);
    }
}

TEST(Redfish, WhatIsBarredIsJudgedByTheStateAfterwards)
{
    MachineSettings machine;
    Read(machine,
         R"({"MapToAttribute": "Limit", "MapToProperty": "ReadOnly", "MapToValue": true,
             "MapFrom": [{"MapFromAttribute": "Mode", "MapFromCondition": "EQU", "MapFromValue": "Off"}]})",
         R"({"Attributes": {"Mode": "Off", "Old": "b"}})");
    const WireValue limit = {WireKind::Integer, "3"};
    const WireValue on = {WireKind::String, "On"};
    EXPECT_EQ(FirstBarred(machine, {{"Limit", limit}}), "Limit") << "what waits locks it";
    EXPECT_EQ(FirstBarred(machine, {{"Limit", limit}, {"Mode", on}}), "");
    EXPECT_EQ(FirstBarred(machine, {{"Limit", {WireKind::Integer, "7"}}}), "") << "it has the value";
    EXPECT_EQ(FirstBarred(machine, {{"Nobody", limit}}), "");
    EXPECT_EQ(
        PatchBody(machine, {{"Limit", limit}}).dump(),
        R"({"@Redfish.SettingsApplyTime":{"ApplyTime":"OnReset"},"Attributes":{"Limit":3,"Mode":"Off","Old":"b"}})");
}

struct ValueCase
{
    const char *attribute;
    const char *value;
    /// As JSON; empty where it is refused.
    const char *sent;
};

constexpr ValueCase kValues[] = {
    {"Mode", "0x1", "\"On\""},    {"Mode", "0x3", ""},         {"Mode", "Auto", ""},      {"Fast", "0x1", "true"},
    {"Limit", "-5", "-5"},        {"Limit", "0x1F", "31"},     {"Count", "0x8", "\"8\""}, {"Count", "eight", ""},
    {"Word", "x", "\"x\""},       {"Loose", "False", "false"}, {"Loose", "off", ""},      {"Twice", "0x10", "16"},
    {"Ratio", "0.5", "0.5"},      {"Ratio", "half", ""},       {"None", "12", "\"12\""},  {"Odd", "1", ""},
    {"Gone", "true", "\"true\""},
};

TEST(Redfish, ValuesAreSentAsTheMachineHasThem)
{
    MachineSettings machine;
    Read(machine);
    for (const ValueCase &row : kValues)
    {
        const std::optional<WireValue> value =
            ValueToSend(machine.registry.Find(row.attribute), machine.bios.Find(row.attribute), row.value);
        EXPECT_EQ(value ? ToJson(*value).dump() : "", row.sent) << row.attribute << " " << row.value;
    }
}

struct MessageCase
{
    const char *answer;
    const char *sentences;
};

constexpr MessageCase kMessages[] = {
    {R"({"error": {"@Message.ExtendedInfo": [{"MessageId": "Base.1.8.PropertyValueNotInList", "RelatedProperties": ["#/Attributes/Mode", 7, "/Attributes/Fast"]}]}})",
     "Mode, Fast: the value is none of those that the machine takes (\"savexml\" lists them)"},
    {R"({"Attributes@Message.ExtendedInfo": [{"MessageId": "X.1.Odd", "Message": "Odd.", "Severity": "Warning", "Resolution": "Wait."}],
         "Mode@Message.ExtendedInfo": {"MessageId": "PropertyNotWritable"}, "Attributes": {"Fast@Message.ExtendedInfo": [{"Severity": "Critical"}]}})",
     "Odd (Wait); Mode: the machine does not let it be changed (another option may bar it); Fast: the service gives no "
     "reason"},
    {R"({"@Message.ExtendedInfo": [{"MessageId": "Base.1.8.Success"}, {"MessageId": "X.Y", "Message": "Hello"}, {"MessageId": "X.Z", "Severity": "OK"}, 7]})",
     ""},
    {R"({"error": {"code": "X.1.Broken", "message": "Broken.."}})", "Broken"},
    {R"({"error": {"@Message.ExtendedInfo": [{"MessageId": "Base.1.8.Success", "Message": "Yes", "MessageSeverity": "OK"}]}})",
     "done"},
    {R"({"error": 7})", "the service gives no reason"},
    {"[]", ""},
};

TEST(Redfish, MessagesBecomeSentences)
{
    for (const MessageCase &row : kMessages)
        EXPECT_EQ(FailureSentences(MessagesOf(Json::parse(row.answer))), row.sentences) << row.answer;
}

TEST(Redfish, PlacesOfARegistryAreChosenByLanguage)
{
    const Json file = Json::parse(
        R"({"Location": [7, {"Language": "ja", "Uri": "/ja"}, {"Language": "en-US", "Uri": {"@odata.id": "/us"}},
        {"Language": "fr", "PublicationUri": "https://x"}, {"Language": "de", "Uri": "/de"}]})");
    const std::pair<const char *, const char *> places[] = {
        {"de", "/de"}, {"de-AT", "/de"}, {"en", "/us"}, {"fr", "/ja"}};
    for (const auto &[language, link] : places)
        EXPECT_EQ(LocationFor(file, language), link) << language;
    EXPECT_EQ(LocationFor(Json::object(), "en"), "");
    EXPECT_EQ(LastPart("/redfish/v1/Systems/1//"), "1");
}

struct NetrcCase
{
    const char *text;
    /// User and password, joined by a slash.
    const char *found;
};

constexpr NetrcCase kNetrcs[] = {
    {"machine a login x password y\nmachine bmc login u password p\n", "u/p"},
    {"# machine bmc login n password n\nmachine bmc\n\tpassword \"p \\\"q\\\"\" account z login u", "u/p \"q\""},
    {"macdef m\nmachine bmc login n password n\n\nmachine bmc login u password p", "u/p"},
    {"default login d password e\nmachine bmc login u password p\n", "d/e"},
    {"machine bmc-2 login u password p machine", "nobody"},
    {"machine bmc login", "/"},
    {"", "nobody"},
};

TEST(Redfish, NetrcNamesWhoLogsIn)
{
    for (const NetrcCase &row : kNetrcs)
    {
        const std::optional<Credentials> found = FindInNetrc(row.text, "bmc");
        EXPECT_EQ(found ? found->user + "/" + found->password : "nobody", row.found) << row.text;
    }
    const std::pair<const char *, const char *> urls[] = {
        {"https://bmc", "bmc"}, {"https://bmc:8443/redfish/v1", "bmc"}, {"https://[fe80::1]:443/", "fe80::1"}};
    for (const auto &[url, host] : urls)
        EXPECT_EQ(HostOf(url), host);
}

TEST(Redfish, SecretsAreNotShown)
{
    Secrets secrets;
    secrets.Add("abc");
    secrets.Add("");
    secrets.Add("x");
    EXPECT_EQ(secrets.Without("abcabc x dab abc"), "(not shown)(not shown) x dab (not shown)");
}

TEST(Redfish, AddressesAreJudgedBeforeAnythingIsSent)
{
    for (const char *const url :
         {"http://bmc", "ftp://bmc", "bmc", "https://", "https://u:p@bmc", "file:///etc/passwd"})
    {
        HttpSettings settings;
        settings.url = url;
        EXPECT_THROW(HttpConnection connection(settings), ToolError) << url;
    }
    HttpSettings settings;
    settings.url = "https://BMC.example/redfish/v1";
    HttpConnection connection(settings);
    EXPECT_EQ(connection.Name(), "https://bmc.example:443");
    for (const char *const link : {"https://other.example/x", "//other.example/x", "https://bmc.example:8443/x",
                                   "http://bmc.example/x", "https://u@bmc.example/x", "file:///etc/passwd"})
        EXPECT_THROW(connection.Send({HttpMethod::Get, link}), ToolError) << link;
}

} // namespace
