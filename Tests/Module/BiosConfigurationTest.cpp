#include "BiosConfiguration.h"

#include "ModuleSupport.h"

#include <gtest/gtest.h>
#include <memory>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;
using Lines = std::vector<std::string>;

constexpr const char *kDocument =
    "<?xml version=\"1.0\"?>\n<TreeItem Name=\"BIOS Options\"><TabControl><Tab Name=\"Bios Options\"><Grid>"
    "<Header>Name,Value,Prompt,Description</Header>";
constexpr const char *kDocumentEnd = "</Grid></Tab></TabControl></TreeItem>\n";
constexpr const char *kUnavailable =
    "<Group Name=\"Bios Options\"><Row>\"Bios Options\", \"FENRIK is not enabled on this platform\", "
    "\"Check whether FENRIK is supported \", \"If Supported Enable FENRIK in BIOS to see the data\"</Row></Group>";

class BiosConfigurationTest : public testing::Test
{
protected:
    Status InitModule() { return TestSupport::InitModule(m_module, m_machine); }

    /// The groups of the UI XML report of a dump with these knobs.
    std::string Groups(const std::string &knobs)
    {
        m_machine.UseDump("<SYSTEM><biosknobs>" + knobs + "</biosknobs></SYSTEM>");
        EXPECT_EQ(InitModule(), StatusCode::Success);
        const std::string report = Report();
        const std::size_t begin = std::string_view(kDocument).size();
        const std::size_t end = report.size() - std::string_view(kDocumentEnd).size();
        EXPECT_TRUE(report.starts_with(kDocument) && report.ends_with(kDocumentEnd)) << report;
        return report.substr(begin, end - begin);
    }

    std::string Report(OutputKind kind = OutputKind::UiXml)
    {
        std::string report = "untouched";
        EXPECT_EQ(m_module.GetData("all", &kind, &report), StatusCode::Success);
        return report;
    }

    Machine &m_machine = Machine::Fresh();
    BiosConfigModule m_module;
};

TEST_F(BiosConfigurationTest, ExportsAndItemsAnswerInAnyState)
{
    DestroyBiosConfigModule(nullptr);
    BaseModule *const created = CreateBiosConfigModule();
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->GetModuleName(), "BIOS Options");
    EXPECT_EQ(created->UnInitModule(), StatusCode::Success);
    const TraceLog log("BiosConfigModule");
    auto *const second = dynamic_cast<BaseAbstraction *>(created);
    EXPECT_EQ(second->GetItemByName(""), StatusCode::NotFound);
    EXPECT_EQ(second->GetItemByName("x"), StatusCode::Success);
    EXPECT_EQ(second->GetNextItem(), StatusCode::Success);
    EXPECT_EQ(second->Reserved1(), StatusCode::Failed);
    EXPECT_EQ(second->Reserved2(), StatusCode::Failed);
    EXPECT_EQ(second->UnInitialize(), StatusCode::Success);
    delete second;
    EXPECT_EQ(
        TraceLog::Take(),
        (Lines{" -->  Fn:BiosConfigModule::GetItemByName \n", " -->  Fn:BiosConfigModule::GetItemByName \n",
               " <--  Fn:BiosConfigModule::GetItemByName returning 1\n", " -->  Fn:BiosConfigModule::GetNextItem \n",
               " <--  Fn:BiosConfigModule::GetNextItem returning 1\n",
               " -->  Fn:BiosConfigModule::~BiosConfigModule ~BiosConfigModule\n",
               " <--  Fn:BiosConfigModule::~BiosConfigModule ~BiosConfigModule\n"}));
}

TEST_F(BiosConfigurationTest, InitModuleAppendsCapabilitiesOrTellsWhyNot)
{
    Cap mine;
    std::vector<Cap *> caps = {&mine};
    const TraceLog log("BiosConfigModule");
    const std::string fn = " Fn:BiosConfigModule::InitModule ";
    EXPECT_EQ(m_module.InitModule(caps, {}), StatusCode::Failed);
    EXPECT_EQ(TraceLog::Take(), (Lines{" --> " + fn + "InitModule\n", " <-- " + fn + "InitializeXMLPath failed\n"}));

    WriteFile(m_machine.HostFile("CapsList.json"), R"({"Tarnwell": {"CapabilityList": {"Other": []}}})");
    EXPECT_EQ(m_module.InitModule(caps, {{"toolxmlpath", m_machine.HostDirectory()}}), StatusCode::Failed);
    EXPECT_EQ(TraceLog::Take(),
              (Lines{" --> " + fn + "InitModule\n", " <-- " + fn + "Failed to read data from Capability List\n"}));
    EXPECT_EQ(m_machine.Errors(), Lines{"Failed to read data from Capability List / BiosConfigModule - InitModule"});
    const std::string errors = ReadFile(m_machine.HostFile("Error.xml"));
    const std::regex place("Filename=\"Sources/Module/BiosConfiguration.cpp\" LineNumber=\"[0-9]+\"/>"
                           "<Message Date=\"&quot;[A-Z][a-z]{2} [ 0-9]{2} [0-9]{4}&quot;\"/>");
    EXPECT_TRUE(std::regex_search(errors, place)) << errors;
    ASSERT_EQ(caps.size(), 1U);

    WriteFile(m_machine.HostFile("CapsList.json"), R"({"Tarnwell": {"CapabilityList": {"BIOS Options": [
        {"Name": "Bios", "Description": "All"}, {"Name": "b", "Description": "B"}]}}})");
    EXPECT_EQ(m_module.InitModule(caps, {{"toolxmlpath", m_machine.HostDirectory()}}), StatusCode::Success);
    EXPECT_EQ(TraceLog::Take(), (Lines{" --> " + fn + "InitModule\n", " <-- " + fn + "returning status 1\n"}));
    ASSERT_EQ(caps.size(), 3U);
    EXPECT_EQ(caps[0], &mine);
    const std::unique_ptr<Cap> first(caps[1]);
    const std::unique_ptr<Cap> second(caps[2]);
    EXPECT_EQ(first->names, Lines{"bios"});
    EXPECT_EQ(first->description, "All");
    EXPECT_EQ(second->names, Lines{"b"});
    EXPECT_EQ(second->description, "B");
}

TEST_F(BiosConfigurationTest, ShowsTheTextOfTheCurrentValue)
{
    const std::string options = "<l><o text='Off' value='0x0'/><o text='On' value='0x1'/><o text='Also' value='1'/>"
                                "<o text='Top' value='FFFFFFFF'/></l>";
    const std::pair<const char *, const char *> cases[] = {
        {"0x1", "Also"}, {"2", ""},       {" \t+01 x", "Also"},   {"none", "Off"},       {"0x", "Off"},
        {"-1", "Top"},   {"-0x1", "Top"}, {"0x100000000", "Off"}, {"-fffffffff", "Off"}, {"0XffffFFFF", "Top"},
    };
    for (const auto &[current, value] : cases)
    {
        EXPECT_EQ(Groups(std::string("<k name='N' CurrentVal='") + current + "'>" + options + "</k>"),
                  std::string("<Group Name=\"Bios Options\"><Row>\"N\", \"") + value +
                      "\", \"NA\", \"NA\"</Row></Group>")
            << current;
    }
}

TEST_F(BiosConfigurationTest, FilesRowsUnderTheirSetupPages)
{
    EXPECT_EQ(Groups("<k name='A' SetupPgPtr='Main/x/y' CurrentVal='plain' description='' prompt='a, \"b\"'/>"
                     "<k name='B' SetupPgPtr='Main'/><k name='C' SetupPgPtr='/Main'/><k name='D' SetupPgPtr='Main/'/>"
                     "<k name='E' SetupPgPtr='Advanced/\xC3\xA9'/><k name='New#GROUPNAME' SetupPgPtr='Main/'/>"
                     "<k name='F' SetupPgPtr='Main/'/>"),
              "<Group Name=\"Advanced\"><Row>\"E\", \"\", \"NA\", \"NA\"</Row></Group>"
              "<Group Name=\"Bios Options\"><Row>\"B\", \"\", \"NA\", \"NA\"</Row>"
              "<Row>\"C\", \"\", \"NA\", \"NA\"</Row></Group>"
              "<Group Name=\"Main\"><Row>\"A\", \"plain\", \"a, \"b\"\", \"Not Available\"</Row>"
              "<Row>\"D\", \"\", \"NA\", \"NA\"</Row></Group><Group Name=\"New\">"
              "<Row>\"F\", \"\", \"NA\", \"NA\"</Row></Group>");
    std::string row;
    EXPECT_FALSE(m_module.IsGroupName(row));
    EXPECT_EQ(m_machine.Errors(), Lines{"Null Dereferencing / BiosConfigModule - IsGroupName"});
}

TEST_F(BiosConfigurationTest, GetDataRefusesNullArguments)
{
    ASSERT_EQ(InitModule(), StatusCode::Success);
    std::string buffer = "untouched";
    const OutputKind kind = OutputKind::UiXml;
    const TraceLog log("BiosConfigModule", TRACE_ERROR);
    EXPECT_EQ(m_module.GetData(nullptr, &kind, &buffer), StatusCode::NotFound);
    EXPECT_EQ(m_module.GetData("bios", nullptr, &buffer), StatusCode::NotFound);
    EXPECT_EQ(m_module.GetData("bios", &kind, nullptr), StatusCode::NotFound);
    WriteFile(m_machine.HostFile("CapsList.json"), R"({"Tarnwell": {"CapabilityList": {"BIOS Options": []}}})");
    ASSERT_EQ(InitModule(), StatusCode::Success);
    EXPECT_EQ(m_module.GetData("all", &kind, &buffer), StatusCode::NotFound);
    EXPECT_EQ(TraceLog::Take(), Lines(4, " **ERROR**  <--  Fn:BiosConfigModule::GetData NULL pointer(s)\n"));
    EXPECT_EQ(m_machine.Errors(), Lines(4, "Null Dereferencing / BiosConfigModule - GetData"));
    EXPECT_EQ(buffer, "untouched");
    EXPECT_TRUE(fs::is_empty(m_machine.HostFile("ModuleData")));
}

TEST_F(BiosConfigurationTest, GetDataTellsWhyAReportIsNotComplete)
{
    constexpr auto kNoWriter = static_cast<OutputKind>(12);
    const std::string function = " Fn:BiosConfigModule::GetData ";
    const std::string initFailed = function + "failed to initilaise\n";
    const std::string readFailed = " <-- " + function + "failed to get knob details\n";
    const std::string noRows = std::string(kDocument) + kDocumentEnd;
    const std::string unavailable = std::string(kDocument) + kUnavailable + kDocumentEnd;
    const struct
    {
        const char *fault;
        OutputKind kind;
        std::string traced;
        std::string reported;
        std::string report;
    } cases[] = {
        {"exit:1", OutputKind::UiXml, initFailed, "Failed to initialise", noRows},
        {"crash", OutputKind::UiXmlAlternate, initFailed, "Failed to initialise", unavailable},
        {"savexml=exit:1", OutputKind::UiXml, readFailed, "Failed to readKnob", noRows},
        {"savexml=exit:2", OutputKind::UiXml, readFailed, "Failed to readKnob", unavailable},
        {"nodump", OutputKind::UiXml, readFailed, "Failed to readKnob", unavailable},
        {"exit:0", kNoWriter, function + "new failed for pWriter\n", "Could not Allocate Memory", "untouched"},
    };
    const TraceLog log("BiosConfigModule", TRACE_ERROR);
    for (const auto &row : cases)
    {
        Machine::Fresh().UseFault(row.fault);
        ASSERT_EQ(InitModule(), StatusCode::Success);
        TraceLog::Take();
        EXPECT_EQ(Report(row.kind), row.report) << row.fault;
        EXPECT_EQ(TraceLog::Take(), Lines{" **ERROR** " + row.traced}) << row.fault;
        EXPECT_EQ(m_machine.Errors(), Lines{row.reported + " / BiosConfigModule - GetData"}) << row.fault;
        const bool noWriter = row.kind == kNoWriter;
        std::string file;
        EXPECT_TRUE(
            Platform::ReadTextFile(m_machine.HostFile(noWriter ? "ModuleData/bios" : "ModuleData/bios_UI_XML"), file));
        EXPECT_EQ(file, noWriter ? "" : row.report) << row.fault;
    }
}

TEST_F(BiosConfigurationTest, GetDataTellsWhatIsWrongWithAReportThatItMade)
{
    const std::string damaged =
        "The dump of the options is damaged; options may be missing or in the wrong group (line 2)";
    const std::string refused = "The report holds text that is not UTF-8";
    const std::string missing = "The report is not complete: rows are missing";
    const struct
    {
        const char *knob;
        OutputKind kind;
        Lines reported;
        const char *inReport;
    } cases[] = {
        {"<k name='A &'/>", OutputKind::UiXml, {damaged}, "A"},
        {"<k name='A\xFF'/>", OutputKind::LogJson, {refused, damaged}, "untouched"},
        {"<k name='A\xFF'/>", OutputKind::UiJson, {refused, damaged}, "untouched"},
        {"<k name='#GROUPNAME'/><k name='A'/>", OutputKind::LogHtmlXml, {missing}, "HTML"},
    };
    for (const auto &row : cases)
    {
        Machine::Fresh().UseDump(std::string("<SYSTEM><biosknobs>\n") + row.knob + "</biosknobs></SYSTEM>");
        ASSERT_EQ(InitModule(), StatusCode::Success);
        EXPECT_NE(Report(row.kind).find(row.inReport), std::string::npos) << row.knob;
        Lines expected;
        for (const std::string &reported : row.reported)
            expected.push_back(reported + " / BiosConfigModule - GetData");
        EXPECT_EQ(m_machine.Errors(), expected) << row.knob;
    }
}

TEST_F(BiosConfigurationTest, GetDataNeedsNoReportFileButTellsOfAFullDisk)
{
    fs::remove(m_machine.HostFile("ModuleData"));
    EXPECT_EQ(Groups("<k name='A'/>"), "<Group Name=\"Bios Options\"><Row>\"A\", \"\", \"NA\", \"NA\"</Row></Group>");
    EXPECT_EQ(m_machine.Errors(), Lines());
    EXPECT_FALSE(fs::exists(m_machine.HostFile("ModuleData")));
    if (!fs::exists("/dev/full"))
        return;
    fs::create_directory(m_machine.HostFile("ModuleData"));
    fs::create_symlink("/dev/full", m_machine.HostFile("ModuleData/bios_UI_XML"));
    EXPECT_TRUE(Report().starts_with(kDocument));
    EXPECT_EQ(m_machine.Errors(), Lines{"Failed to write the report file / BiosConfigModule - GetData"});
}

} // namespace
