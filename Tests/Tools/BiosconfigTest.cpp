#include "Platform.h"
#include "RunProgram.h"
#include "TestSupport.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;

constexpr const char *kToolPlace =
    "Program Files/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary/";

Outcome RunBiosconfig(const std::string &arguments)
{
    return RunCaptured("\"" BIOSCONFIG_PROGRAM "\" " + arguments);
}

/// What the program ends with.
constexpr std::uint32_t kDone = 0, kUnexpected = 1, kDifferent = 2, kNotFound = 3, kNotValid = 4, kInPart = 5,
                        kToolFailed = 6, kNoTool = 7, kTimedOut = 8, kNotPermitted = 9, kWrongUsage = 64;

/// A report file's text as it was in the module's buffer.
std::string BufferOf(const std::string &reportFile)
{
    std::string text;
    EXPECT_TRUE(Platform::ReadTextFile(reportFile, text)) << reportFile;
    return text;
}

std::ptrdiff_t FilesIn(const std::string &directory)
{
    return std::distance(fs::directory_iterator(directory), {});
}

/// Works in a directory of its own, which holds an installed external tool and the tool directory "tools".
class BiosconfigTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::current_path(m_directory.Path(""));
        fs::create_directories("tools/ModuleData");
        fs::create_directory("out");
        fs::copy(EXAMPLE_CAPABILITIES, "tools/CapsList.json");
        fs::create_directories(kToolPlace);
        fs::copy(FENRIKCMD_PROGRAM, std::string(kToolPlace) + "FenrikCmd.exe");
    }

    void TearDown() override { fs::current_path(fs::temp_directory_path()); }

    TemporaryDirectory m_directory;
    EnvironmentSetting m_programFiles{"BIOSCONFIG_PROGRAM_FILES", m_directory.Path("Program Files")};
};

TEST_F(BiosconfigTest, OutputIsTheReportAloneAndTheToolsOwnOutputIsAMessage)
{
    const Outcome outcome = RunBiosconfig("report --tool-dir tools");
    EXPECT_EQ(outcome.exitCode, kDone) << outcome.messages;
    EXPECT_FALSE(fs::exists("tools/Error.xml"));
    EXPECT_EQ(outcome.output, BufferOf("tools/ModuleData/bios options_UI_XML"));
    EXPECT_NE(outcome.messages.find(TOOL_MESSAGE), std::string::npos) << outcome.messages;
}

TEST_F(BiosconfigTest, ReplacesTheOutputFileAndLeavesNothingBeside)
{
    WriteFile("out/report.xml", "old");
    const Outcome outcome = RunBiosconfig("report --tool-dir tools --option \"bios options\" -o out/report.xml");
    EXPECT_EQ(outcome.exitCode, kDone) << outcome.messages;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(ReadFile("out/report.xml"), BufferOf("tools/ModuleData/bios options_UI_XML"));
    EXPECT_EQ(FilesIn("out"), 1);
}

TEST_F(BiosconfigTest, AReportGoesToADevice)
{
    EXPECT_EQ(RunBiosconfig("report --tool-dir tools -o " NULL_DEVICE).exitCode, kDone);
    EXPECT_FALSE(fs::exists("NUL"));
}

TEST_F(BiosconfigTest, AFailedReportLeavesTheOutputFileAndShowsTheErrorsOfThisRunOnly)
{
    const EnvironmentSetting fault("FENRIKCMD_FAULT", "exit:3");
    WriteFile("out/report.xml", "old");
    WriteFile("tools/Error.xml", "<Tool><Error><Message Name=\"Earlier\"/></Error></Tool>");
    const Outcome toFile = RunBiosconfig("report --tool-dir tools -o out/report.xml");
    const Outcome toOutput = RunBiosconfig("report --tool-dir tools");

    EXPECT_EQ(toFile.exitCode, kNotPermitted);
    EXPECT_EQ(ReadFile("out/report.xml"), "old");
    EXPECT_EQ(FilesIn("out"), 1);
    EXPECT_EQ(toOutput.exitCode, kNotPermitted);
    EXPECT_NE(toOutput.output.find("FENRIK is not enabled on this platform"), std::string::npos);
    for (const std::string &messages : {toFile.messages, toOutput.messages})
    {
        EXPECT_NE(messages.find("recorded 1 error in tools/Error.xml"), std::string::npos) << messages;
        EXPECT_NE(messages.find("  Failed to initialise (BiosConfigModule - GetData), "), std::string::npos);
        EXPECT_EQ(messages.find("Earlier"), std::string::npos) << messages;
    }
}

TEST_F(BiosconfigTest, ADamagedDumpGivesAReportInTheFileAndAnExitCodeOfItsOwn)
{
    const EnvironmentSetting fault("FENRIKCMD_FAULT", "halfdump");
    const Outcome outcome = RunBiosconfig("report --tool-dir tools -o out/report.xml");
    EXPECT_EQ(outcome.exitCode, kInPart);
    EXPECT_NE(outcome.messages.find("  The dump of the options is damaged; options may be missing or in the wrong "
                                    "group (line "),
              std::string::npos)
        << outcome.messages;
    EXPECT_EQ(ReadFile("out/report.xml"), BufferOf("tools/ModuleData/bios options_UI_XML"));
    EXPECT_NE(ReadFile("out/report.xml").find("<Row>"), std::string::npos);
}

TEST_F(BiosconfigTest, ATimeLimitEndsTheToolAndOtherwiseChangesNothing)
{
    WriteFile("out/report.xml", "old");
    {
        const EnvironmentSetting fault("FENRIKCMD_FAULT", "savexml=hang");
        const Outcome outcome = RunBiosconfig("report --tool-dir tools --timeout 1 -o out/report.xml");
        EXPECT_EQ(outcome.exitCode, kTimedOut);
        EXPECT_NE(outcome.messages.find("more than 1 s; the external tool was ended"), std::string::npos);
        EXPECT_EQ(ReadFile("out/report.xml"), "old");
        EXPECT_EQ(FilesIn("out"), 1);
        // A program that runs can neither be removed, on one system, nor be written, on others.
        EXPECT_NE(Platform::OpenStream(std::string(kToolPlace) + "FenrikCmd.exe", "r+b"), nullptr);
    }
    const std::string report = RunBiosconfig("report --tool-dir tools").output;
    EXPECT_EQ(RunBiosconfig("report --tool-dir tools --timeout 60").output, report);
    EXPECT_EQ(RunBiosconfig("report --tool-dir tools --timeout 60 -o out/report.xml").exitCode, kDone);
    EXPECT_EQ(ReadFile("out/report.xml"), report);
    EXPECT_EQ(RunBiosconfig("report --tool-dir bare --timeout 60").exitCode, kNotFound);
}

TEST_F(BiosconfigTest, AnInterruptionEndsTheToolAndLeavesNothing)
{
    if (!*INTERRUPT_AFTER_A_SECOND)
        GTEST_SKIP() << "nothing here interrupts another process";
    const EnvironmentSetting fault("FENRIKCMD_FAULT", "hang");
    for (const char *const timeLimit : {"", "--timeout 60 "})
    {
        const std::string command = "\" report --tool-dir tools -o out/report.xml ";
        EXPECT_EQ(RunInSight(INTERRUPT_AFTER_A_SECOND " \"" BIOSCONFIG_PROGRAM + command + timeLimit), 130U);
        EXPECT_EQ(FilesIn("out"), 0) << timeLimit;
        EXPECT_NE(Platform::OpenStream(std::string(kToolPlace) + "FenrikCmd.exe", "r+b"), nullptr) << timeLimit;
    }
}

TEST_F(BiosconfigTest, ProcessesThatFailAtOnceLoseNoEntry)
{
    constexpr int kRuns = 10;
    fs::remove_all("Program Files");
    std::atomic<std::size_t> failed = 0; // a busy system may not start them all
    const auto fail = [&failed]
    {
        for (int run = 0; run < kRuns; ++run)
        {
            std::uint32_t exitCode = 0;
            Platform::RunCommand("\"" BIOSCONFIG_PROGRAM "\" report --tool-dir tools -o report.xml", exitCode);
            failed += exitCode == kNoTool ? 1 : 0;
        }
    };
    std::thread processes[] = {std::thread(fail), std::thread(fail), std::thread(fail), std::thread(fail)};
    for (std::thread &process : processes)
        process.join();
    const std::string errors = ReadFile("tools/Error.xml");
    std::size_t entries = 0;
    for (std::size_t at = 0; (at = errors.find("<Error>", at)) != std::string::npos; ++at)
        ++entries;
    EXPECT_EQ(entries, failed);
    EXPECT_GT(failed, std::size(processes) * kRuns * 3 / 4);
    EXPECT_EQ(FilesIn("tools"), 3);
}

TEST_F(BiosconfigTest, PrintsOneCapabilityPerLine)
{
    const EnvironmentSetting toolDirectory("BIOSCONFIG_TOOL_DIR", "tools/");
    const Outcome outcome = RunBiosconfig("capabilities");
    EXPECT_EQ(outcome.exitCode, kDone) << outcome.messages;
    EXPECT_EQ(outcome.output, "bios options\tAll setup options of this machine's BIOS\n");
}

TEST_F(BiosconfigTest, TheHostOfTheGuideMakesTheSameReport)
{
    const EnvironmentSetting programFiles("ProgramFiles", m_directory.Path("Program Files"));
    const Outcome outcome = RunCaptured("\"" MINIMAL_HOST "\" \"" MODULE_FILE "\" tools/");
    EXPECT_EQ(outcome.exitCode, kDone);
    EXPECT_EQ(outcome.messages, "BIOS Options: bios options\n");
    EXPECT_TRUE(outcome.output.ends_with(BufferOf("tools/ModuleData/bios options_UI_XML")));
}

constexpr const char *kComponents[] = {
    "BiosConfigModule",    "BiosConfigurationModule", "ErrorUIXMLWriter",    "ModuleUIXMLWriter",  "ModuleLogXMLWriter",
    "ModuleLogHTMLWriter", "ModuleLogHTMLXMLWriter",  "ModuleLogJSONWriter", "ModuleUIJSONWriter", "XMLParser",
    "XMLReaderLib"};

TEST_F(BiosconfigTest, EveryComponentTracesToAllSinksAndAFaultyConfigurationIsTold)
{
    std::string configuration = "Global:TraceType<En>\nGlobal:OutputType<CoFi>\nGlobal:FileName<all.log>\n";
    for (const std::string component : kComponents)
        configuration.append(component).append(":FileName<").append(component).append(".log>\n");
    const EnvironmentSetting fault("FENRIKCMD_FAULT", "exit:3");
    WriteFile("debug.conf", configuration);
    std::string all, console;
    const std::pair<std::string, std::string> formats[] = {{"ui-xml", "_UI_XML"},     {"log-xml", "_LOG_XML"},
                                                           {"log-html", "_LOG_HTML"}, {"log-html-xml", ""},
                                                           {"log-json", "_LOG_JSON"}, {"ui-json", "_UI_JSON"}};
    for (const auto &[format, suffix] : formats)
    {
        const Outcome outcome = RunBiosconfig("report --tool-dir tools --format " + format);
        EXPECT_EQ(outcome.output, BufferOf("tools/ModuleData/bios options" + suffix)) << format;
        console += outcome.messages;
        all += BufferOf("all.log");
    }
    for (const std::string component : kComponents)
    {
        const std::string lines = BufferOf(component + ".log"), first = lines.substr(0, lines.find('\n', 1));
        EXPECT_TRUE(first.starts_with("\n -->  Fn:")) << component;
        EXPECT_TRUE(all.find(first) != std::string::npos && console.find(first) != std::string::npos) << first;
    }
    WriteFile("debug.conf", "Global:TraceType<En>\nGlobal:FileName<x.log\n");
    const std::string messages = RunBiosconfig("capabilities --tool-dir tools").messages;
    EXPECT_TRUE(messages.starts_with("biosconfig: debug.conf, line 2, is not of the form")) << messages;
}

struct ReadingCase
{
    const char *arguments;
    std::uint32_t exitCode;
    const char *output;
};

constexpr ReadingCase kReadingCases[] = {
    {"get PostDelay FanCurve AssetTag StrangeLevel", kDone, "10\nSilent – über Nacht\nLäb 7, \"rack B\"\n0x9\n"},
    {"get quietboot WakeOnLan", kNotFound, "Yes\n"},
    {"list '*Delay' --changed", kDone, "PostDelay  10  Start delay (s)  Boot/Timing\n"},
    {"list --csv AssetTag", kDone,
     "Name,Value,Prompt,Page,Default,Changed\nAssetTag,\"Läb 7, \"\"rack B\"\"\",Asset tag,/Owner,,yes\n"},
    {"list --csv --redact --redact-also 'link*' AssetTag LinkSpeed", kDone,
     "Name,Value,Prompt,Page,Default,Changed\nAssetTag,(redacted),Asset tag,/Owner,(redacted),yes\n"
     "LinkSpeed,(redacted),Link <b>speed</b>,Ports & Länge/Link,(redacted),yes\n"},
    {"search NIGHT", kNotFound, ""},
    {"search nacht", kDone, "FanCurve  choice: Silent – über Nacht\n"},
    {"export 'Fan*' PostDelay", kDone, "FanCurve=Silent – über Nacht\n;PostDelay=10\n;FanFloor=30\n"},
    {"export --redact 'Fan*' AssetTag", kDone, "FanCurve=Silent – über Nacht\n;FanFloor=30\n"},
    {"export StrangeLevel", kInPart, ""},
    {"diff --defaults --exit-code", kDifferent,
     "FanCurve      Loud & cool  Silent – über Nacht  Platform/Fans/Rear\n"
     "WakeOnLan     No           Yes                  Network\n"
     "PostDelay     5            10                   Boot/Timing\n"
     "FanFloor      20           30                   Platform/Fans/Rear\n"
     "AssetTag      (empty)      Läb 7, \"rack B\"      /Owner\n"
     "StrangeLevel  Low          0x9                  Platform/Fans/Rear\n"
     "LinkSpeed     Auto         > 1 GB/s             Ports & Länge/Link\n"},
    {"set --dry-run --exit-code BootOrder=disk", kDone, "BootOrder  Disk  Disk  unchanged\n"},
    {"set --dry-run --exit-code BootOrder=network", kDifferent, "BootOrder  Disk  Network  program\n"},
};

TEST_F(BiosconfigTest, ReadsADumpWithoutATool)
{
    fs::copy(SMALL_FIRMWARE, "small.xml");
    const EnvironmentSetting noTool("BIOSCONFIG_PROGRAM_FILES", "");
    for (const ReadingCase &each : kReadingCases)
    {
        std::string arguments = each.arguments;
        std::replace(arguments.begin(), arguments.end(), '\'', '"');
        const Outcome outcome = RunBiosconfig(arguments + " --from small.xml");
        EXPECT_EQ(outcome.exitCode, each.exitCode) << arguments << outcome.messages;
        EXPECT_EQ(outcome.output, each.output) << arguments;
    }
    EXPECT_EQ(RunBiosconfig("diff small.xml small.xml --exit-code").exitCode, kDone);
    EXPECT_EQ(FilesIn("."), 4); // nothing was made
}

TEST_F(BiosconfigTest, AnUpdateIsPlannedProgrammedAndReadBack)
{
    fs::create_directories("a.b");
    WriteFile("a.b/v1.2.txt", "BootFast=enabled\n;BootPromptSeconds=3");
    const Outcome first = RunBiosconfig("update --tool-dir tools a.b/../a.b/v1.2.txt --exit-code");
    EXPECT_EQ(first.exitCode, kDifferent) << first.messages;
    EXPECT_EQ(first.output, "BootFast           Disabled  Enabled  pending restart\n"
                            "BootPromptSeconds  3         3        unchanged\n");
    EXPECT_NE(first.messages.find("BIOS settings updated successfully. "), std::string::npos) << first.messages;
    EXPECT_EQ(BufferOf(std::string(kToolPlace) + "../out/v1_2.ini"),
              "[BiosKnobs]\nBootFast==Enabled\nBootPromptSeconds==3\n");
    {
        // There is nothing to do, so the tool is not asked to do it; nor is it for what cannot be done.
        const EnvironmentSetting fault("FENRIKCMD_FAULT", "progknobsfromfile=crash");
        EXPECT_EQ(RunBiosconfig("update a.b/v1.2.txt --exit-code").exitCode, kDone);
        WriteFile("bad.ini", "[Boot]\nBootFast = 7");
        const Outcome bad = RunBiosconfig("update bad.ini");
        EXPECT_EQ(bad.exitCode, kNotValid);
        EXPECT_NE(bad.messages.find("bad.ini:2:1: BootFast: error: \"7\" is no choice; there are: Disabled, Enabled"),
                  std::string::npos)
            << bad.messages;
        const Outcome crashed = RunBiosconfig("set BootFast=Disabled --tool-dir tools");
        EXPECT_EQ(crashed.exitCode, kToolFailed);
        EXPECT_EQ(crashed.output, "BootFast  Disabled (pending Enabled)  Disabled  rejected\n");
        EXPECT_NE(crashed.messages.find("  Failed to Write to knobs (Update Bios Settings), "), std::string::npos);
    }
    EXPECT_EQ(FilesIn("."), 5);
}

TEST_F(BiosconfigTest, SettingsGoAndComeBack)
{
    const std::string restart = "\"" + m_directory.Path(kToolPlace) + "FenrikCmd.exe\" restart";
    const auto dump = [&](const std::string &name)
    {
        EXPECT_EQ(RunBiosconfig("list -q -o list").exitCode, kDone);
        fs::rename(std::string(kToolPlace) + "../FenrikOutput.xml", name);
    };
    RunBiosconfig("set CpuEnergyBias=Saving"); // its value was no choice
    RunInSight(restart);
    dump("before.xml");
    EXPECT_EQ(RunBiosconfig("export --changed -o changed.txt").exitCode, kDone);
    EXPECT_EQ(RunBiosconfig("reset --all").exitCode, kDone);
    RunInSight(restart);
    EXPECT_EQ(RunBiosconfig("diff --defaults --exit-code").exitCode, kDone);
    EXPECT_EQ(RunBiosconfig("update --only-changes changed.txt").exitCode, kDone);
    EXPECT_EQ(RunBiosconfig("diff before.xml --exit-code").exitCode, kDifferent);
    RunInSight(restart);
    const Outcome last = RunBiosconfig("diff before.xml --exit-code");
    EXPECT_EQ(last.exitCode, kDone) << last.output << last.messages;
}

struct ToolFault
{
    const char *fault;
    std::uint32_t exitCode;
    const char *message;
};

constexpr ToolFault kToolFaults[] = {
    {"exit:3", kNotPermitted, "ended with exit code 3"},
    {"savexml=crash", kToolFailed, "the external tool "},
    {"savexml=exit:4", kToolFailed, "FenrikCmd.exe savexml"},
    {"nodump", kToolFailed, "cannot read the dump"},
    {"wrongroot", kToolFailed, "is no dump of BIOS options"},
    {"halfdump", kInPart, "is damaged in line "},
    {"hang", kTimedOut, "more than 1 s; the external tool was ended"},
};

TEST_F(BiosconfigTest, FailuresOfTheToolAreToldApart)
{
    for (const ToolFault &each : kToolFaults)
    {
        const EnvironmentSetting fault("FENRIKCMD_FAULT", each.fault);
        const Outcome outcome = RunBiosconfig("list --json --timeout 1");
        EXPECT_EQ(outcome.exitCode, each.exitCode) << each.fault << outcome.messages;
        EXPECT_NE(outcome.messages.find(each.message), std::string::npos) << each.fault << outcome.messages;
        EXPECT_TRUE(outcome.output.starts_with("{\"schemaVersion\":1,") && outcome.output.ends_with("]}\n"));
    }
    {
        const EnvironmentSetting fault("FENRIKCMD_FAULT", "halfdump");
        EXPECT_EQ(RunBiosconfig("set SetupLevel=Basic").exitCode, kToolFailed);
    }
    // A tool that says it has programmed, and has not.
    const EnvironmentSetting fault("FENRIKCMD_FAULT", "progknobsfromfile=exit:0");
    const Outcome outcome = RunBiosconfig("set SetupLevel=Basic");
    EXPECT_EQ(outcome.exitCode, kToolFailed);
    EXPECT_EQ(outcome.output, "SetupLevel  Advanced  Basic  rejected\n");
}

struct BadCall
{
    const char *arguments;
    std::uint32_t exitCode;
    const char *message;
};

constexpr BadCall kBadCalls[] = {
    {"", kWrongUsage, "a command is missing"},
    {"reprot", kWrongUsage, "no command \"reprot\"; did you mean \"report\"?"},
    {"list --chagned", kWrongUsage, "\"--chagned\" is no option of \"list\"; did you mean \"--changed\"?"},
    {"report --tool-dir tools --format pdf", kWrongUsage, "pdf not in {ui-xml,"},
    {"report --tool-dir tools --option other", kNotFound, "does not offer the option \"other\""},
    {"update", kWrongUsage, "\"update\" wants TEMPLATE"},
    {"update missing.txt", kNotFound, "cannot read the template missing.txt"},
    {"update tools/CapsList.json", kNotValid, "must end in .txt"},
    {"set BootFast=Enabled --tool-dir bare", kUnexpected, "(BiosConfigModule - InitModule), "},
    {"set BootFst=Enabled", kNotFound, "no option \"BootFst\"; did you mean \"BootFast\"?"},
    {"set BootFast=Enabled --from small.xml", kWrongUsage, "goes with --dry-run"},
    {"reset", kWrongUsage, "wants the names of options, or --all"},
    {"diff", kWrongUsage, "wants one or two dumps"},
    {"diff missing.xml small.xml", kNotFound, "cannot read the dump missing.xml"},
    {"list --from tools/CapsList.json", kNotValid, "is no list of BIOS options"},
    {"list --from small.xml --page Boots", kNotFound, "did you mean \"Boot\"?"},
    {"get --from small.xml quietboot", kNotFound, "did you mean \"QuietBoot\"?"},
    {"search --from small.xml qwertz", kNotFound, "no option has \"qwertz\""},
    {"list --program-files nowhere", kNoTool, "the external tool is missing: there is no nowhere"},
    {"report --tool-dir tools --module missing", kNotFound, "cannot load the module: "},
    {"report --tool-dir tools --module \"" NOT_A_MODULE "\"", kUnexpected, "lacks the module's exports"},
    {"report", kNotFound, "name the host's, which holds CapsList.json, with --tool-dir"},
    {"list --from \"\"", kWrongUsage, "--from: it is empty"},
    {"-v list", kWrongUsage, "options stand behind the command: \"biosconfig list -v\""},
    {"check utf16.txt", kNotValid, "it is not UTF-8"},
    {"report --tool-dir missing", kNotFound, "no tool directory \"missing\""},
    {"report --tool-dir bare", kUnexpected,
     "Failed to read data from Capability List (BiosConfigModule - InitModule), "},
    {"report --tool-dir locked", kNotPermitted, "could not record errors"},
    {"report --tool-dir tools -o missing/report.xml", kUnexpected, "cannot write the output file missing/report.xml"},
    {"list --from small.xml -o bare", kUnexpected, "cannot write the output file bare"},
    {"completion tcsh", kWrongUsage, "no completion for \"tcsh\""},
};

TEST_F(BiosconfigTest, BadCallsGetAMessageAndTheirExitCode)
{
    fs::create_directory("bare");
    WriteFile("utf16.txt", std::string("\xFF\xFEU\0", 4));
    fs::create_directories("locked/Error.xml");
    fs::copy(SMALL_FIRMWARE, "small.xml");
    for (const BadCall &call : kBadCalls)
    {
        const Outcome outcome = RunBiosconfig(call.arguments);
        EXPECT_EQ(outcome.exitCode, call.exitCode) << call.arguments;
        EXPECT_EQ(outcome.output, "") << call.arguments;
        EXPECT_NE(outcome.messages.find(call.message), std::string::npos) << call.arguments << ": " << outcome.messages;
    }
}

} // namespace
