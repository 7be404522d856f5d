#include "BiosConfiguration.h"
#include "KnobDump.h"
#include "ModuleSupport.h"

#include <functional>
#include <gtest/gtest.h>

struct BiosConfigModuleInspector
{
    static KnobList &Knobs(BiosConfigModule &module) { return module.m_knobs; }
};

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;
using namespace StatusCode;
using Lines = std::vector<std::string>;

/// What a host sees of an update, the status aside; a failure is traced, and recorded with the title.
struct Outcome
{
    std::string message = "untouched";
    std::string failure;
    std::string title = " / Update Bios Settings";
};

const Outcome kNotTried = {};
const Outcome kRefused = {"untouched", "the path of the template cannot be passed to the tool", ""};
const Outcome kNoModule = {"untouched", "Failed to Initialize module"};
const Outcome kNoPath = {"untouched", "Failed to Initialize module", ""}; // nor has the error file a place yet
const Outcome kNotReady = {"Failed to Update BIOS Settings. Please Enable FENRIK to support this option",
                           "Failed to Initialize BiosOptions package"};
const Outcome kNotValid = {"Failed to Update BIOS Settings, Please make sure all the provided options in the BKC "
                           "Template are valid",
                           "Failed to Write to knobs"};
const Outcome kUpdated = {"BIOS settings updated successfully. Please reboot the system to reflect the changes", ""};

struct UpdateCase
{
    /// What Break knows, or a fault of the stand-in.
    std::string broken;
    const char *file;
    Status status;
    Outcome outcome;
    std::string content = "BootFast=Enabled";
};

const UpdateCase kCases[] = {
    {"path", "t.ini", Failed, kNoPath}, // the first of its process
    {"", "knobs", Failed, kNotTried},
    {"", "t.ini.txt", Failed, kNotTried},
    {"", "v1.2/t.ini", Failed, kNotTried},
    {"", "a\"b.ini", Failed, kRefused},
    {"capabilities", "t.ini", Failed, kNoModule},
    {"program", "t.ini", Failed, kNotReady},
    {"fenrikstatus=crash", "t.txt", ToolFailed, kNotReady},
    {"progknobsfromfile=exit:1", "t.txt", NotFound, kNotValid},
    {"progknobsfromfile=crash", "t.ini", ToolFailed, kNotValid},
    // Without a knob file of its own the tool is not started.
    {"knob file", "t.txt", Failed, kNotValid},
    {"template", "t.txt", Failed, kNotValid},
    {"template", "t.ini", NotFound, kNotValid},
    {"no template", "t.txt", Success, kUpdated}, // without assignments there is nothing that can fail
    {"", "t.txt", Success, kUpdated,
     "\xEF\xBB\xBF"
     "BootFast=Enabled"},
    {"", "t.txt", Success, kUpdated, ""},
    {"", "t.txt", NotFound, kNotValid, "BootFast"},
    {"", "t.txt", NotFound, kNotValid, std::string("BootFast=\0Enabled", 17)},
    {"", "T.TXT", Success, kUpdated, "BootFast=Enabled;\r\nBootMode=Legacy;\r\n"},
    {"", "T.INI", Success, kUpdated},
};

class BiosConfigurationUpdateTest : public testing::Test
{
protected:
    void Break(const UpdateCase &row)
    {
        const std::map<std::string, std::function<void()>> breaks = {
            {"path", [this] { m_parameters.clear(); }},
            {"capabilities", [this] { fs::remove(m_machine.HostFile("CapsList.json")); }},
            {"program", [this] { fs::remove(m_machine.ToolProgram()); }},
            {"knob file", [this] { fs::create_directories(m_machine.ToolFile("out/t.ini")); }},
            {"template", [&row] { fs::remove(row.file), fs::create_directory(row.file); }},
            {"no template", [&row] { fs::remove(row.file); }},
        };
        const auto found = breaks.find(row.broken);
        found == breaks.end() ? m_machine.UseFault(row.broken) : found->second();
    }

    /// A template in the current directory.
    void MakeTemplate(const std::string &file, const std::string &content)
    {
        m_parameters = {{"toolxmlpath", m_machine.HostDirectory()}};
        if (file.starts_with("a\"")) // no file of Windows has such a name
            return;
        fs::remove_all(file);
        WriteFile(file, content);
    }

    void SetUp() override
    {
        fs::current_path(m_directory.Path(""));
        fs::create_directory("v1.2");
    }
    void TearDown() override { fs::current_path(fs::temp_directory_path()); }

    TemporaryDirectory m_directory;
    Machine &m_machine = Machine::Fresh();
    ParameterMap m_parameters;
    std::string m_message = "untouched";
};

TEST_F(BiosConfigurationUpdateTest, TellsTheOutcomeWhereverItIsShown)
{
    const TraceLog log("BiosConfigModule", TRACE_ERROR);
    for (const UpdateCase &row : kCases)
    {
        SCOPED_TRACE(row.broken + " " + row.file);
        Machine::Fresh();
        MakeTemplate(row.file, row.content);
        Break(row);
        m_message = "untouched";
        EXPECT_EQ(UpdateBiosSettings(row.file, m_message, m_parameters), row.status);
        const auto &[message, failure, title] = row.outcome;
        EXPECT_EQ(m_message, message);
        const Lines traced = {" **ERROR**  Fn:UpdateBiosSettings " + failure + "\n"};
        Lines recorded = m_machine.Errors(), lines = TraceLog::Take();
        const std::map<std::string, std::string> causes = {
            {"capabilities t.ini", "Failed to read data from Capability List / BiosConfigModule - InitModule"},
            {"knob file t.txt", "Failed to write the knob file / Update Bios Settings"},
            {"template t.txt", "Failed to read the template / Update Bios Settings"}};
        const auto cause = causes.find(row.broken + " " + row.file);
        if (cause != causes.end()) // has its own entry in front
        {
            EXPECT_EQ(recorded.at(0), cause->second);
            recorded.erase(recorded.begin());
            lines.erase(lines.begin(), lines.end() - 1);
        }
        EXPECT_EQ(lines, failure.empty() ? Lines() : traced);
        EXPECT_EQ(recorded, failure.empty() || title.empty() ? Lines() : Lines{failure + title});
        EXPECT_TRUE(message != "untouched" || !fs::exists(m_machine.ToolFile("out")));
    }
}

TEST_F(BiosConfigurationUpdateTest, TurnsATemplateIntoAKnobFile)
{
    const std::pair<std::string, std::string> cases[] = {
        {"A=1;B=2", "A==1\r\nB==2\r\n"},
        {"B=2;A=1;B=3;A=4;A=5;B=6", "A==1\r\nB==2\r\n"},
        {"C=x=y;D", "C==x=y\r\nD==\r\n"},
        {"A=1;;B=2", "==\r\nA==1\r\nB==2\r\n"},
        {"A= 1 \r\nignored; B =2;\r\nC=3;", "\r\nC==3\r\n B ==2\r\nA== 1 \r\n"},
        {std::string("A\0=\0;", 5), std::string("A\0==\0\r\n", 7)},
        {"E=On;e=On;F=Off", "E==0x1\r\nF==0x7\r\ne==On\r\n"},
        {"E=Maybe", "E==Maybe\r\n"},
        {"", ""},
    };
    m_machine.UseDump("<SYSTEM><biosknobs><k name='E' CurrentVal='0'><l><o text='Off' value='0x0'/><o text='On' "
                      "value='0x1'/></l></k><k name='F' CurrentVal='0'><l><o text='Off' value='0x7'/></l></k>"
                      "<k name='E' CurrentVal='0'><l><o text='Maybe' value='0x8'/></l></k></biosknobs></SYSTEM>");
    BiosConfigModule module;
    ASSERT_EQ(module.Initialize(), Success);
    ASSERT_EQ(readKnob(BiosConfigModuleInspector::Knobs(module), ""), Success);
    for (const auto &[text, lines] : cases)
    {
        MakeTemplate("t.txt", text);
        EXPECT_EQ(module.ParseBkcTemplate("t.txt", "k.ini"), Success);
        EXPECT_EQ(ReadFile("k.ini"), "[BiosKnobs]\r\n" + lines);
    }
}

TEST_F(BiosConfigurationUpdateTest, HoldsForATemplateOfAHundredMegabytes)
{
    std::string text;
    for (const std::string &value : {std::string(987, 'v'), std::string("ignored")})
    {
        for (std::uint32_t number = 0; number < 100'000; ++number)
            text += "Knob" + std::to_string(1'000'000 + number) + "=" + value + ";";
    }
    MakeTemplate("t.txt", text);
    m_machine.UseFault("progknobsfromfile=exit:0");
    EXPECT_EQ(UpdateBiosSettings("t.txt", m_message, m_parameters), Success);
    EXPECT_EQ(fs::file_size(m_machine.ToolFile("out/t.ini")), 100'000'000 + 100'000 * 2 + 13);
}

} // namespace
