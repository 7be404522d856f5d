#include "Platform.h"
#include "TestSupport.h"

#include <algorithm>
#include <filesystem>
#include <libxml/parser.h>
#include <map>
#include <set>

using namespace TestSupport;

namespace
{

struct Outcome
{
    std::uint32_t exitCode = Platform::kUnknownExitCode;
    std::string output;
    std::string error;
};

using Attributes = std::vector<std::pair<std::string, std::string>>;

struct DumpedKnob
{
    Attributes attributes;
    std::vector<Attributes> options;

    std::string operator[](const std::string &name) const
    {
        const auto found =
            std::find_if(attributes.begin(), attributes.end(), [&](const auto &pair) { return pair.first == name; });
        return found == attributes.end() ? "(no " + name + ")" : found->second;
    }
};

Attributes ReadAttributes(const xmlNode *element)
{
    Attributes attributes;
    for (const xmlAttr *attribute = element->properties; attribute; attribute = attribute->next)
    {
        const auto *const content = attribute->children ? attribute->children->content : nullptr;
        attributes.emplace_back(reinterpret_cast<const char *>(attribute->name),
                                content ? reinterpret_cast<const char *>(content) : "");
    }
    return attributes;
}

std::vector<const xmlNode *> Elements(const xmlNode *parent)
{
    std::vector<const xmlNode *> elements;
    for (const xmlNode *node = parent ? parent->children : nullptr; node; node = node->next)
    {
        if (node->type == XML_ELEMENT_NODE)
            elements.push_back(node);
    }
    return elements;
}

std::string NameOf(const xmlNode *node)
{
    return reinterpret_cast<const char *>(node->name);
}

DumpedKnob ReadKnob(const xmlNode *element)
{
    DumpedKnob knob{ReadAttributes(element), {}};
    const auto children = Elements(element);
    if (!children.empty())
    {
        EXPECT_EQ(NameOf(children[0]), "options");
        for (const xmlNode *option : Elements(children[0]))
            knob.options.push_back(ReadAttributes(option));
    }
    return knob;
}

/// The knobs of a well-formed dump; fails the test for any other text.
std::vector<DumpedKnob> ParseDump(const std::string &dump)
{
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(dump.data(), static_cast<int>(dump.size()), "dump", nullptr, XML_PARSE_HUGE), &xmlFreeDoc);
    std::vector<DumpedKnob> knobs;
    const xmlNode *const root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    EXPECT_TRUE(root && NameOf(root) == "SYSTEM");
    for (const xmlNode *part : Elements(root))
    {
        if (NameOf(part) == "biosknobs")
            for (const xmlNode *knob : Elements(part))
                knobs.push_back(ReadKnob(knob));
    }
    return knobs;
}

std::size_t Count(const std::string &text, const std::string &piece)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        ++count;
    return count;
}

/// A copy of the tool in a directory of its own, since its firmware lies beside it.
class FenrikCmdTest : public testing::Test
{
protected:
    FenrikCmdTest() { std::filesystem::copy_file(FENRIKCMD_PROGRAM, m_directory.Path("FenrikCmd.exe")); }

    Outcome Run(const std::string &arguments) const
    {
        Outcome outcome;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const std::string commandLine = "\"" + Path("FenrikCmd.exe") + "\" " + arguments;
        EXPECT_TRUE(Platform::RunCommand(commandLine, outcome.exitCode)) << commandLine;
        outcome.output = testing::internal::GetCapturedStdout();
        outcome.error = testing::internal::GetCapturedStderr();
        return outcome;
    }

    void RunWell(const std::string &arguments) const
    {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0U) << arguments;
        EXPECT_EQ(outcome.error, "") << arguments;
    }

    /// The bytes of a new dump.
    std::string Dump() const
    {
        RunWell("savexml \"" + Path("dump.xml") + "\"");
        return ReadFile(Path("dump.xml"));
    }

    std::map<std::string, std::string> CurrentValues() const
    {
        std::map<std::string, std::string> values;
        for (const DumpedKnob &knob : ParseDump(Dump()))
            values[knob["name"]] = knob["CurrentVal"];
        return values;
    }

    Outcome Program(const std::string &knobFile) const
    {
        WriteFile(Path("knobs.ini"), knobFile);
        return Run("progknobsfromfile \"" + Path("knobs.ini") + "\"");
    }

    std::string Path(const std::string &name) const { return m_directory.Path(name); }

    std::string FirmwarePath() const { return Path("FenrikFirmware.json"); }

private:
    TemporaryDirectory m_directory;
};

bool IsOptionValue(const DumpedKnob &knob, const std::string &value)
{
    return std::any_of(knob.options.begin(), knob.options.end(),
                       [&](const Attributes &option) { return option.at(1).second == value; });
}

bool FitsItsSize(const DumpedKnob &knob, const std::string &value)
{
    const std::size_t size = std::stoul(knob["size"]);
    return knob["setupType"] == "text" ? value.size() <= size : value.size() <= 2 + 2 * size;
}

TEST_F(FenrikCmdTest, DumpIsLaidOutAsTheToolDoes)
{
    const std::string dump = Dump();
    EXPECT_EQ(dump.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<SYSTEM>\r\n\t<platform "), 0U);
    EXPECT_EQ(Count(dump, "\n"), Count(dump, "\r\n"));
    EXPECT_NE(dump.find("\t\t<!-- Setup page: Main/Identity -->\r\n"), std::string::npos);
    EXPECT_NE(dump.find("\t\t\t<options>\r\n\t\t\t\t<!-- the current value is none of these -->\r\n"
                        "\t\t\t\t<option text=\"Performance\" value=\"0x0\"/>\r\n"),
              std::string::npos);
    EXPECT_NE(dump.find("\t\t\t\t<option text=\"Saving\" value=\"0xF\"/>\r\n\t\t\t</options>\r\n\t\t</knob>\r\n"),
              std::string::npos);
    EXPECT_NE(dump.find("SetupPgPtr=\"Main/Identity\" default=\"\" "
                        "CurrentVal=\"Prüfstand 4 / Gestell &quot;B&quot;\"/>\r\n"),
              std::string::npos);
}

TEST_F(FenrikCmdTest, DefaultFirmwareIsSound)
{
    const std::vector<std::string> attributes = {"type",        "setupType", "name",      "varstoreIndex", "prompt",
                                                 "description", "UqiVal",    "size",      "offset",        "depex",
                                                 "SetupPgPtr",  "default",   "CurrentVal"};
    std::set<std::string> names;
    std::map<std::string, std::size_t> storeEnds;
    std::set<std::string> pages;
    std::map<std::string, int> kinds;
    int changed = 0;
    for (const DumpedKnob &knob : ParseDump(Dump()))
    {
        SCOPED_TRACE(knob["name"]);
        std::vector<std::string> found;
        for (const auto &[name, value] : knob.attributes)
            found.push_back(name);
        EXPECT_EQ(found, attributes);
        EXPECT_TRUE(names.insert(knob["name"]).second);
        std::size_t &storeEnd = storeEnds[knob["varstoreIndex"]];
        EXPECT_GE(std::stoul(knob["offset"], nullptr, 16), storeEnd);
        storeEnd += std::stoul(knob["size"]);
        pages.insert(knob["SetupPgPtr"]);
        ++kinds[knob["setupType"]];
        EXPECT_TRUE(FitsItsSize(knob, knob["default"]) && FitsItsSize(knob, knob["CurrentVal"]));
        EXPECT_TRUE(knob.options.empty() || IsOptionValue(knob, knob["default"]));
        changed += knob["default"] != knob["CurrentVal"] ? 1 : 0;
    }
    EXPECT_GE(names.size(), 250U);
    EXPECT_TRUE(names.contains("TpmDevice"));
    EXPECT_GE(pages.size(), 10U);
    EXPECT_EQ(kinds.size(), 4U);
    EXPECT_EQ(changed, 10);
}

TEST_F(FenrikCmdTest, ProgrammedValuesTakeEffectWithTheRestart)
{
    const auto before = CurrentValues();
    auto after = before;
    for (const auto &[name, value] : std::map<std::string, std::string>{{"BootMode", "0x0"},
                                                                        {"BootDevice1", "0x3"},
                                                                        {"BootFast", "0x1"},
                                                                        {"FanMinimumDuty", "0xFF"},
                                                                        {"UsbPortMask", "0xFFFFFFFF"},
                                                                        {"MemHighLimit", "0x1"},
                                                                        {"SystemOwner", "=é \"x\" <y> & z"},
                                                                        {"AssetTag", ""}})
        after[name] = value;
    const Outcome programmed = Program("\xEF\xBB\xBF; bench 11\r\n\r\n[BiosKnobs]\r\nBootMode==Legacy\r\n"
                                       "  BootDevice1 \t= 0X03 ; flash\r\n# [Boot\r\n[Other];\r\nBootFast=1\r\n==\r\n"
                                       "FanMinimumDuty=255\r\nUsbPortMask=0xffffffff\nMemHighLimit = 4 TiB\r\n"
                                       "SystemOwner===é \"x\" <y> & z\r\nAssetTag==");
    EXPECT_EQ(programmed.exitCode, 0U) << programmed.error;
    EXPECT_EQ(CurrentValues(), before);
    EXPECT_NE(Run("pending").output.find("BootDevice1 = 0x3\n"), std::string::npos);
    RunWell("restart");
    EXPECT_EQ(CurrentValues(), after);
    EXPECT_EQ(Run("pending").output.find('='), std::string::npos);
}

struct BadKnobFile
{
    const char *text;
    const char *complaint;
};

constexpr BadKnobFile kBadKnobFiles[] = {
    {"[BiosKnobs]\r\nBootMode==0x1\r\nNoSuchKnob==1\r\nBroken\r\n", "line 3: there is no option \"NoSuchKnob\""},
    {"bootmode==0x1", "line 1: there is no option \"bootmode\""},
    {"BootFast=1\n\n; x\nBroken\nNoSuchKnob=1\n", "line 4: \"Broken\" is neither an assignment"},
    {"[Boot\nBootFast=1", "line 1: \"[Boot\" is neither an assignment"},
    {"=1", "line 1: there is no option \"\""},
    {"BootFast=1\nBootFast=1", "line 2: BootFast is assigned a second time"},
    {"BootFast=2", R"(line 1: BootFast: "2" is none of "Disabled" = 0x0, "Enabled" = 0x1)"},
    {"BootFast=enabled", R"("enabled" is none of)"},
    {"BootFast=", R"("" is none of)"},
    {"FanMinimumDuty=256", "line 1: FanMinimumDuty: 256 is more than 1 byte(s) hold"},
    {"CpuCoreMaskSocket0=0x10000000000000000", "is not a number"},
    {"FanMinimumDuty=-1", "\"-1\" is not a number"},
    {"FanMinimumDuty=12x", "\"12x\" is not a number"},
    {"FanMinimumDuty=0x", "\"0x\" is not a number"},
    {"LanWakePassword=1234567", "the text is longer than 6 bytes"},
    {"LanWakePassword=\xFC", "the text is not printable UTF-8"},
    {"LanWakePassword=a\x01", "the text is not printable UTF-8"},
};

TEST_F(FenrikCmdTest, BadKnobFileChangesNothing)
{
    ASSERT_EQ(Program("BootMode=Legacy").exitCode, 0U);
    const std::string firmware = ReadFile(FirmwarePath());
    for (const BadKnobFile &bad : kBadKnobFiles)
    {
        const Outcome outcome = Program(bad.text);
        EXPECT_EQ(outcome.exitCode, 1U) << bad.text;
        EXPECT_NE(outcome.error.find(bad.complaint), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(Run("progknobsfromfile \"" + Path("none.ini") + "\"").exitCode, 1U);
    EXPECT_EQ(ReadFile(FirmwarePath()), firmware);
}

TEST_F(FenrikCmdTest, DisabledInterfaceRefusesUntilItIsEnabled)
{
    WriteFile(Path("knobs.ini"), "BootFast=1");
    const std::string commands[] = {"fenrikstatus", "savexml \"" + Path("d.xml") + "\"",
                                    "progknobsfromfile \"" + Path("knobs.ini") + "\""};
    RunWell("disable");
    RunWell("restart");
    for (const std::string &command : commands)
    {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.exitCode, 3U) << command;
        EXPECT_NE(outcome.error.find("disabled"), std::string::npos);
    }
    EXPECT_FALSE(std::filesystem::exists(Path("d.xml")));
    RunWell("enable");
    for (const std::string &command : commands)
        RunWell(command);
}

TEST_F(FenrikCmdTest, BadCommandLineIsRefused)
{
    for (const char *const arguments : {"", "nonsense", "--nonsense", "savexml", "savexml a b", "fenrikstatus a",
                                        "generate", "generate 0", "generate 12k", "generate 5000001"})
    {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 1U) << arguments;
        EXPECT_NE(outcome.error.find("FenrikCmd.exe: "), std::string::npos) << arguments;
    }
    EXPECT_NE(Run("--help").output.find("Exit codes:"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(FirmwarePath()));
}

TEST_F(FenrikCmdTest, FileThatCannotBeWrittenLeavesNothingBehind)
{
    std::filesystem::create_directory(Path("folder"));
    EXPECT_EQ(Run("savexml \"" + Path("folder") + "\"").exitCode, 4U);
    EXPECT_EQ(Run("savexml \"" + Path("none") + "\\dump.xml\"").exitCode, 4U);
    EXPECT_FALSE(std::filesystem::exists(Path("folder.new")));
    RunWell("savexml \"" + Path("folder") + "\\dump.xml\"");
    EXPECT_EQ(ReadFile(Path("folder/dump.xml")), Dump());
}

TEST_F(FenrikCmdTest, FileThatCannotBeReplacedStays)
{
    const std::string dump = Dump();
    const std::string firmware = ReadFile(FirmwarePath());
    std::filesystem::create_directory(Path("dump.xml.new"));
    std::filesystem::create_directory(FirmwarePath() + ".new");
    EXPECT_EQ(Run("savexml \"" + Path("dump.xml") + "\"").exitCode, 4U);
    EXPECT_EQ(Run("disable").exitCode, 4U);
    EXPECT_EQ(Program("BootFast=1").exitCode, 4U);
    EXPECT_EQ(ReadFile(Path("dump.xml")), dump);
    EXPECT_EQ(ReadFile(FirmwarePath()), firmware);
}

TEST_F(FenrikCmdTest, DamagedFirmwareIsNamedAndKept)
{
    for (const std::string damaged :
         {"", "{", "[]", R"({"format": 2, "options": 1, "interfaceEnabled": true, "current": {}, "pending": {}})",
          R"({"format": 1, "options": 0, "interfaceEnabled": true, "current": {}, "pending": {}})",
          R"({"format": 1, "options": 9, "interfaceEnabled": true, "current": {"BootMode": 1}, "pending": {}})"})
    {
        WriteFile(FirmwarePath(), damaged);
        for (const char *const command : {"fenrikstatus", "restart", "enable"})
        {
            const Outcome outcome = Run(command);
            EXPECT_EQ(outcome.exitCode, 2U) << damaged;
            EXPECT_NE(outcome.error.find("FenrikFirmware.json"), std::string::npos);
        }
        EXPECT_EQ(ReadFile(FirmwarePath()), damaged);
    }
    RunWell("reset");
    RunWell("fenrikstatus");
}

TEST_F(FenrikCmdTest, GeneratedFirmwareIsTheSameEveryTime)
{
    RunWell("generate 3000");
    const std::string dump = Dump();
    RunWell("reset");
    RunWell("generate 3000");
    EXPECT_EQ(Dump(), dump);
    const auto knobs = ParseDump(dump);
    std::set<std::string> names;
    for (const DumpedKnob &knob : knobs)
        names.insert(knob["name"]);
    EXPECT_EQ(names.size(), 3000U);
    EXPECT_NEAR(static_cast<double>(dump.size()) / 3000, 1000, 100);
    EXPECT_EQ(Program("BootMode_Node7=UEFI").exitCode, 0U);
}

struct FaultCase
{
    const char *fault;
    std::uint32_t status;
    std::uint32_t saving;
    /// What a dump that stood there before begins with afterwards; null when there is none.
    const char *dump;
};

constexpr const char *kGoodDump = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<SYSTEM>";

constexpr FaultCase kFaults[] = {
    {"exit:0", 0, 0, "old"},
    {"exit:1", 1, 1, "old"},
    {"exit:255", 255, 255, "old"},
    {"savexml=exit:2", 0, 2, "old"},
    {"fenrikstatus=exit:2", 2, 0, kGoodDump},
    {"nodump", 0, 0, nullptr},
    {"emptydump", 0, 0, ""},
    {"savexml=wrongroot", 0, 0, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<FIRMWARE>"},
    {"nonsense", 5, 5, "old"},
    {"exit:256", 5, 5, "old"},
    {"savexml=", 5, 5, "old"},
    {"nonsense=exit:1", 5, 5, "old"},
    {"fenrikstatus=nodump", 5, 5, "old"},
};

TEST_F(FenrikCmdTest, FaultsAreDoneAsTold)
{
    for (const FaultCase &fault : kFaults)
    {
        SCOPED_TRACE(fault.fault);
        const EnvironmentSetting setting("FENRIKCMD_FAULT", fault.fault);
        WriteFile(Path("dump.xml"), "old");
        EXPECT_EQ(Run("fenrikstatus").exitCode, fault.status);
        EXPECT_EQ(Run("savexml \"" + Path("dump.xml") + "\"").exitCode, fault.saving);
        ASSERT_EQ(std::filesystem::exists(Path("dump.xml")), fault.dump != nullptr);
        if (fault.dump)
        {
            const std::string dump = ReadFile(Path("dump.xml"));
            EXPECT_EQ(dump.substr(0, std::string(fault.dump).size()), fault.dump);
            EXPECT_EQ(dump.empty(), fault.dump == std::string());
        }
    }
}

TEST_F(FenrikCmdTest, CrashIsNoExitCodeOfTheTool)
{
    const EnvironmentSetting setting("FENRIKCMD_FAULT", "crash");
    EXPECT_GT(Run("fenrikstatus").exitCode, 2U);
}

TEST_F(FenrikCmdTest, HalfAndBigDumps)
{
    const std::string whole = Dump();
    {
        const EnvironmentSetting setting("FENRIKCMD_FAULT", "halfdump");
        const std::string half = Dump();
        EXPECT_NEAR(static_cast<double>(half.size()), static_cast<double>(whole.size()) / 2, 2000);
        EXPECT_EQ(half, whole.substr(0, half.size()));
    }
    const EnvironmentSetting setting("FENRIKCMD_FAULT", "big");
    RunWell("savexml \"" + Path("dump.xml") + "\"");
    EXPECT_GE(std::filesystem::file_size(Path("dump.xml")), 100'000'000U);
}

} // namespace
