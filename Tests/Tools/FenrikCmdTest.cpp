#include "Platform.h"
#include "RunProgram.h"
#include "TestSupport.h"

#include <filesystem>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <memory>

using namespace TestSupport;

namespace
{

/// What the program ends with.
constexpr std::uint32_t kDone = 0, kBadInput = 1, kFirmwareUnreadable = 2, kInterfaceDisabled = 3, kCannotWrite = 4,
                        kUnknownFault = 5;

/// What the XPath expression yields, as a text; a dump that is not well-formed fails the test.
std::string Evaluate(const std::string &dump, const std::string &expression)
{
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(dump.data(), static_cast<int>(dump.size()), "dump", nullptr, XML_PARSE_HUGE), xmlFreeDoc);
    EXPECT_TRUE(document);
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(xmlXPathNewContext(document.get()),
                                                                                   xmlXPathFreeContext);
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
        xmlXPathEval(reinterpret_cast<const xmlChar *>(expression.c_str()), context.get()), xmlXPathFreeObject);
    EXPECT_TRUE(result) << expression;
    const std::unique_ptr<xmlChar, xmlFreeFunc> text(xmlXPathCastToString(result.get()), xmlFree);
    return reinterpret_cast<const char *>(text.get());
}

/// A copy of the tool in a directory of its own, since its firmware lies beside it.
class FenrikCmdTest : public testing::Test
{
protected:
    FenrikCmdTest() : m_source("FENRIKCMD_SOURCE", "")
    {
        std::filesystem::copy_file(FENRIKCMD_PROGRAM, Path("FenrikCmd.exe"));
    }

    Outcome Run(const std::string &arguments) const
    {
        return TestSupport::RunCaptured("\"" + Path("FenrikCmd.exe") + "\" " + arguments);
    }

    void RunWell(const std::string &arguments) const { EXPECT_EQ(Run(arguments).exitCode, kDone) << arguments; }

    std::string SaveCommand() const { return "savexml \"" + DumpPath() + "\""; }

    /// The bytes of a new dump.
    std::string Dump() const
    {
        RunWell(SaveCommand());
        return ReadFile(DumpPath());
    }

    Outcome Program(const std::string &knobFile) const
    {
        WriteFile(Path("knobs.ini"), knobFile);
        return Run("progknobsfromfile \"" + Path("knobs.ini") + "\"");
    }

    std::string Path(const std::string &name) const { return m_directory.Path(name); }

    std::string DumpPath() const { return Path("dump.xml"); }

    std::string FirmwarePath() const { return Path("FenrikFirmware.json"); }

private:
    TemporaryDirectory m_directory;
    EnvironmentSetting m_source;
};

TEST_F(FenrikCmdTest, DumpIsLaidOutAsTheToolDoes)
{
    const std::string dump = Dump();
    EXPECT_TRUE(dump.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<SYSTEM>\r\n\t<platform "));
    for (const char *const piece :
         {"\t\t<!-- Setup page: Main/Identity -->\r\n"
          "\t\t<knob type=\"string\" setupType=\"text\" name=\"AssetTag\" varstoreIndex=\"0x00\" prompt=\"Asset Tag\" "
          "description=\"Free text of up to 32 bytes that inventory software finds in the system tables. Kept over "
          "firmware updates.\" UqiVal=\"0xEBBE4FF72526F5C9\" size=\"32\" offset=\"0x0008\" depex=\"TRUE\" "
          "SetupPgPtr=\"Main/Identity\" default=\"\" CurrentVal=\"Prüfstand 4 / Gestell &quot;B&quot;\"/>\r\n",
          "CurrentVal=\"0x5\">\r\n\t\t\t<options>\r\n\t\t\t\t<!-- the current value is none of these -->\r\n"
          "\t\t\t\t<option text=\"Performance\" value=\"0x0\"/>\r\n"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, piece, dump);
}

TEST_F(FenrikCmdTest, FirmwareIsSoundAndTheSameEveryTime)
{
    const std::pair<const char *, const char *> firmwares[] = {{"reset", "278"}, {"generate 600", "600"}};
    for (const auto &[command, knobCount] : firmwares)
    {
        RunWell(command);
        const std::string dump = Dump();
        EXPECT_EQ(Evaluate(dump, "count(/SYSTEM/biosknobs/knob[count(@*) = 13])"), knobCount);
        for (const char *const unsound :
             {"preceding-sibling::knob/@name = @name", "preceding-sibling::knob/@UqiVal = @UqiVal",
              "options and not(options/option/@value = @default)",
              "string-length(@CurrentVal) > @size + (@setupType != 'text') * (2 + @size)"})
            EXPECT_EQ(Evaluate(dump, "//knob[" + std::string(unsound) + "]/@name"), "") << unsound;
        RunWell(command);
        EXPECT_EQ(Dump(), dump);
    }
    EXPECT_EQ(Program("BootMode_Node1=UEFI").exitCode, kDone);
}

TEST_F(FenrikCmdTest, ProgrammedValuesTakeEffectWithTheRestart)
{
    EXPECT_EQ(Program("BootFast=1").exitCode, kDone);
    EXPECT_EQ(Program("BootMode==Legacy\r\nAssetTag==\r\nSystemOwner=é \"x\" <y> & z").exitCode, kDone);
    const std::string waiting = Dump();
    EXPECT_EQ(Evaluate(waiting, "//knob[@name='BootMode']/@CurrentVal"), "0x1");
    EXPECT_EQ(Evaluate(waiting, "//knob[@name='BootMode']/@PendingVal"), "0x0");
    EXPECT_EQ(Evaluate(waiting, "count(//@PendingVal)"), "4");
    RunWell("restart");
    const std::string after = Dump();
    EXPECT_EQ(Evaluate(after, "count(//@PendingVal)"), "0");
    EXPECT_EQ(Evaluate(after, "//knob[@name='BootFast']/@CurrentVal"), "0x1");
    EXPECT_EQ(Evaluate(after, "//knob[@name='AssetTag']/@CurrentVal"), "");
    EXPECT_EQ(Evaluate(after, "//knob[@name='SystemOwner']/@CurrentVal"), "é \"x\" <y> & z");
    EXPECT_EQ(Run("pending").output, "0 options wait for the restart.\n");
}

struct Judgement
{
    const char *knobFile;
    std::uint32_t exitCode;
    /// Stands in what waits for the restart afterwards, or in the complaint.
    const char *said;
};

constexpr Judgement kJudgements[] = {
    {"\xEF\xBB\xBF; x\r\n[BiosKnobs]\r\n  BootFast \t= 0X1 ; y\r\n# [Boot\r\n[Other];\r\n==\r\n", kDone,
     "BootFast = 0x1\n"},
    {"CpuCoreMaskSocket0=0xffffffffffffffff", kDone, "CpuCoreMaskSocket0 = 0xFFFFFFFFFFFFFFFF\n"},
    {"FanMinimumDuty=255", kDone, "FanMinimumDuty = 0xFF\n"},
    {"LanWakePassword===234 6\nMemHighLimit = 4 TiB", kDone, "LanWakePassword = =234 6\nMemHighLimit = 0x1\n"},
    {"[BiosKnobs]\r\nBootMode==0x1\r\nNoSuchKnob==1\r\nBroken\r\n", kBadInput,
     "line 3: there is no option \"NoSuchKnob\""},
    {"BootFast=1\n\n; x\nBroken\nNoSuchKnob=1\n", kBadInput, "line 4: \"Broken\" is neither an assignment"},
    {"[Boot\nBootFast=1", kBadInput, "line 1: \"[Boot\" is neither an assignment"},
    {"BootFast=1\nBootFast=1", kBadInput, "line 2: BootFast is assigned a second time"},
    {"BootFast=2", kBadInput, R"(line 1: BootFast: "2" is none of "Disabled" = 0x0, "Enabled" = 0x1)"},
    {"BootFast=enabled", kBadInput, R"("enabled" is none of)"},
    {"FanMinimumDuty=256", kBadInput, "line 1: FanMinimumDuty: 256 is more than 1 byte(s) hold"},
    {"FanMinimumDuty=12x", kBadInput, "\"12x\" is not a number"},
    {"LanWakePassword=1234567", kBadInput, "the text is longer than 6 bytes"},
    {"LanWakePassword=a\x01", kBadInput, "the text is not printable UTF-8"},
};

TEST_F(FenrikCmdTest, KnobFileIsTakenWholeOrNotAtAll)
{
    for (const Judgement &judgement : kJudgements)
    {
        SCOPED_TRACE(judgement.knobFile);
        RunWell("reset");
        const std::string firmware = ReadFile(FirmwarePath());
        const Outcome outcome = Program(judgement.knobFile);
        EXPECT_EQ(outcome.exitCode, judgement.exitCode);
        EXPECT_EQ(ReadFile(FirmwarePath()) == firmware, judgement.exitCode != kDone);
        const std::string said = judgement.exitCode == kDone ? Run("pending").output : outcome.messages;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, judgement.said, said);
    }
}

TEST_F(FenrikCmdTest, DisabledInterfaceRefusesUntilItIsEnabled)
{
    RunWell("disable");
    RunWell("restart");
    EXPECT_EQ(Run("fenrikstatus").exitCode, kInterfaceDisabled);
    EXPECT_EQ(Run(SaveCommand()).exitCode, kInterfaceDisabled);
    EXPECT_EQ(Program("BootFast=1").exitCode, kInterfaceDisabled);
    EXPECT_FALSE(std::filesystem::exists(DumpPath()));
    RunWell("enable");
    EXPECT_EQ(Program("BootFast=1").exitCode, kDone);
}

TEST_F(FenrikCmdTest, BadCommandLineIsRefused)
{
    for (const char *const arguments : {"", "nonsense", "savexml", "savexml a b", "fenrikstatus a", "generate 0",
                                        "generate 12k", "generate 5000001", "progknobsfromfile none.ini"})
        EXPECT_EQ(Run(arguments).exitCode, kBadInput) << arguments;
}

TEST_F(FenrikCmdTest, FileThatCannotBeReplacedStays)
{
    const std::string dump = Dump();
    std::filesystem::create_directory(Path("folder"));
    EXPECT_EQ(Run("savexml \"" + Path("folder") + "\"").exitCode, kCannotWrite);
    EXPECT_EQ(Run("savexml \"" + Path("no folder/dump.xml") + "\"").exitCode, kCannotWrite);
    EXPECT_TRUE(std::filesystem::is_empty(Path("folder")));
    EXPECT_EQ(ReadFile(DumpPath()), dump);
}

TEST_F(FenrikCmdTest, DamagedFirmwareIsNamedAndKept)
{
    for (const std::string damaged :
         {"", "{", "[]", R"({"format": 2, "options": 1, "interfaceEnabled": true, "current": {}, "pending": {}})",
          R"({"format": 1, "options": 0, "interfaceEnabled": true, "current": {}, "pending": {}})",
          R"({"format": 1, "options": 9, "interfaceEnabled": true, "current": {"BootMode": 1}, "pending": {}})"})
    {
        WriteFile(FirmwarePath(), damaged);
        const Outcome outcome = Run("enable");
        EXPECT_EQ(outcome.exitCode, kFirmwareUnreadable) << damaged;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "FenrikFirmware.json", outcome.messages);
        EXPECT_EQ(ReadFile(FirmwarePath()), damaged);
    }
    RunWell("reset");
    RunWell("fenrikstatus");
}

TEST_F(FenrikCmdTest, DamagedConfigurationIsNoSource)
{
    for (const char *const damaged : {"sorce = simulated\n", "source = other\n", "source = redfish\n"})
    {
        WriteFile(Path("FenrikCmd.conf"), damaged);
        for (const std::string &command : {std::string("fenrikstatus"), SaveCommand(), std::string("pending"),
                                           std::string("reset"), std::string("restart")})
        {
            const Outcome outcome = Run(command);
            EXPECT_EQ(outcome.exitCode, kFirmwareUnreadable) << command;
            EXPECT_PRED_FORMAT2(testing::IsSubstring, "FenrikCmd.conf", outcome.messages);
        }
    }
    WriteFile(Path("FenrikCmd.conf"), "source = simulated\nroot = none\n");
    RunWell("fenrikstatus");
    EXPECT_FALSE(std::filesystem::exists(DumpPath()));
    for (const auto &[source, exitCode] : {std::pair("kernal", kFirmwareUnreadable),
                                           {"kernel", kInterfaceDisabled},
                                           {"kernel:nowhere", kInterfaceDisabled}})
    {
        const EnvironmentSetting setting("FENRIKCMD_SOURCE", source);
        EXPECT_EQ(Run("fenrikstatus").exitCode, exitCode) << source;
    }
}

struct FaultCase
{
    const char *fault;
    std::uint32_t status;
    std::uint32_t saving;
    bool dumps;
};

// What else the faults make of a dump is seen in the tests of those that read it.
constexpr FaultCase kFaults[] = {
    {"exit:255", 255, 255, false},
    {"savexml=exit:2", kDone, 2, false},
    {"fenrikstatus=exit:2", 2, kDone, true},
    {"halfdump", kDone, kDone, true},
    {"nonsense", kUnknownFault, kUnknownFault, false},
    {"exit:4294967296", kUnknownFault, kUnknownFault, false},
    {"nonsense=exit:1", kUnknownFault, kUnknownFault, false},
    {"fenrikstatus=nodump", kUnknownFault, kUnknownFault, false},
};

TEST_F(FenrikCmdTest, FaultsAreDoneAsTold)
{
    const std::string whole = Dump();
    for (const auto &[fault, status, saving, dumps] : kFaults)
    {
        const EnvironmentSetting setting("FENRIKCMD_FAULT", fault);
        WriteFile(DumpPath(), "old");
        EXPECT_EQ(Run("fenrikstatus").exitCode, status) << fault;
        EXPECT_EQ(Run(SaveCommand()).exitCode, saving) << fault;
        const std::string dump = ReadFile(DumpPath());
        EXPECT_EQ(whole.starts_with(dump), dumps) << fault;
        EXPECT_EQ(dumps && dump.size() < whole.size(), fault == std::string("halfdump")) << fault;
    }
}

} // namespace
