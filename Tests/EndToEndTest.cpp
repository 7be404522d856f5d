#include "BiosConfigModule.h"
#include "ModuleSupport.h"

#include <gtest/gtest.h>
#include <memory>

// A host of the built module: it knows the public headers and finds everything else at run time.

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;

class EndToEndTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_library) << m_error;
        const auto create = m_library.Find<decltype(CreateBiosConfigModule)>("CreateBiosConfigModule");
        const auto destroy = m_library.Find<decltype(DestroyBiosConfigModule)>("DestroyBiosConfigModule");
        ASSERT_TRUE(create && destroy);
        m_module = {create(), destroy};
        ASSERT_EQ(InitModule(*m_module, m_machine), StatusCode::Success);
    }

    std::string Report(OutputKind kind)
    {
        std::string report;
        EXPECT_EQ(m_module->GetData("all", &kind, &report), StatusCode::Success);
        return report;
    }

    Machine &m_machine = Machine::Fresh();
    std::string m_error;
    Platform::SharedLibrary m_library{MODULE_FILE, m_error};
    std::unique_ptr<BaseModule, decltype(&DestroyBiosConfigModule)> m_module{nullptr, nullptr};
};

std::size_t Count(const std::string &text, const std::string &searched)
{
    std::size_t count = 0;
    for (std::size_t found = text.find(searched); found != std::string::npos; found = text.find(searched, found + 1))
        ++count;
    return count;
}

/// The ending of the report file, and of the golden document, by output kind.
constexpr const char *kReportSuffixes[] = {"_UI_XML",   "_UI_XML", "_LOG_XML", "_LOG_XML",  "_LOG_HTML",
                                           "_LOG_HTML", "",        "",         "_LOG_JSON", "_UI_JSON"};

TEST_F(EndToEndTest, GivesTheSameReportEveryTimeInBufferAndFile)
{
    m_machine.UseDump(ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml"));
    for (std::size_t kind = 0; kind < std::size(kReportSuffixes); ++kind)
    {
        const std::string golden = ReadFile(TEST_DATA_DIRECTORY "SmallFirmware" + std::string(kReportSuffixes[kind]));
        const std::string reportFile = m_machine.HostFile("ModuleData/bios") + kReportSuffixes[kind];
        fs::remove(reportFile);
        EXPECT_EQ(Report(static_cast<OutputKind>(kind)), golden) << kind;
        EXPECT_EQ(Count(ReadFile(reportFile), "\r\n"), Count(golden, "\n")) << kind;
        std::string text;
        EXPECT_TRUE(Platform::ReadTextFile(reportFile, text)) << kind;
        EXPECT_EQ(text, golden) << kind;
    }
    EXPECT_EQ(m_machine.Errors(), std::vector<std::string>());
}

TEST_F(EndToEndTest, ReportsEveryOptionOfADumpOfAHundredMegabytes)
{
    for (const char *fault : {"", "big"})
    {
        m_machine.UseFault(fault);
        testing::internal::CaptureStderr();
        const std::string report = Report(OutputKind::UiXml);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        const std::string dump = ReadFile(m_machine.ToolFile("FenrikOutput.xml"));
        EXPECT_GT(dump.size(), *fault ? 100'000'000U : 100'000U);
        const std::size_t knobs = Count(dump, "SetupPgPtr=");
        EXPECT_GT(knobs, 250U);
        EXPECT_EQ(Count(report, "<Row>"), knobs - Count(dump, "\"TpmDevice\""));
    }
    EXPECT_TRUE(fs::exists(m_machine.ToolFile("out")));
    EXPECT_EQ(m_machine.Errors(), std::vector<std::string>());
}

TEST_F(EndToEndTest, ADamagedDumpGivesWhatCanBeReadAndNoOutput)
{
    const std::string dump = ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml");
    m_machine.UseDump(dump.substr(0, dump.find("WakeOnLan")));
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const std::string report = Report(OutputKind::UiXml);
    EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
    EXPECT_NE(report.find("<Row>\"FanCurve\""), std::string::npos) << report;
    EXPECT_EQ(report.find("WakeOnLan"), std::string::npos) << report;
    EXPECT_EQ(m_machine.Errors(),
              std::vector<std::string>{"The dump of the options is damaged; options may be missing or in the wrong "
                                       "group (line 18) / BiosConfigModule - GetData"});
}

TEST_F(EndToEndTest, AProgrammedOptionIsInTheReportAfterTheRestart)
{
    fs::create_directory(m_machine.ToolFile("out"));
    WriteFile(m_machine.ToolFile("out/bench.ini"), "earlier");
    WriteFile(m_machine.HostFile("bench.ini"), "beside");
    WriteFile(m_machine.HostFile("bench.txt"), "BootFast=Enabled;\r\nBootMode=Legacy");
    const auto update = m_library.Find<decltype(UpdateBiosSettings)>("UpdateBiosSettings");
    ASSERT_TRUE(update);
    std::string message;
    EXPECT_EQ(update(m_machine.HostDirectory() + "bench.txt", message, {{"toolxmlpath", m_machine.HostDirectory()}}),
              StatusCode::Success);
    EXPECT_EQ(ReadFile(m_machine.HostFile("bench.ini")), "beside");
    EXPECT_EQ(ReadFile(m_machine.ToolFile("out/bench.ini")),
              "[BiosKnobs]\r\n\r\nBootMode==Legacy\r\nBootFast==Enabled\r\n");
    const std::string before = "<Row>\"BootFast\", \"Disabled\"";
    EXPECT_NE(Report(OutputKind::UiXml).find(before), std::string::npos);
    std::uint32_t exitCode = 1;
    EXPECT_TRUE(Platform::RunCommand('"' + m_machine.ToolProgram() + "\" restart", exitCode));
    const std::string after = Report(OutputKind::UiXml);
    EXPECT_EQ(after.find(before), std::string::npos);
    EXPECT_NE(after.find("<Row>\"BootFast\", \"Enabled\""), std::string::npos);
    EXPECT_NE(after.find("<Row>\"BootMode\", \"Legacy\""), std::string::npos);
}

TEST_F(EndToEndTest, ErrorsGoToAFileThatMayBeMissingOrUnwritable)
{
    m_machine.UseFault("exit:1");
    Report(OutputKind::UiXml);
    EXPECT_EQ(m_machine.Errors(), std::vector<std::string>{"Failed to initialise / BiosConfigModule - GetData"});
    fs::remove_all(m_machine.HostFile(""));
    EXPECT_FALSE(Report(OutputKind::UiXml).empty());
    EXPECT_FALSE(fs::exists(m_machine.HostFile("Error.xml")));
}

} // namespace
