#include "ErrorUIXMLWriter.h"

#include "ErrorFile.h"
#include "ModuleSupport.h"
#include "SingletonManager.h"

#include <gtest/gtest.h>
#include <regex>
#include <thread>

namespace
{

using namespace TestSupport;

constexpr const char *kDeclaration = "<?xml version=\"1.0\"?>\n";

/// An error file's text with the time stamps, which must be well formed, replaced by "*".
std::string MaskTimes(const std::string &text)
{
    const std::regex time("(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                          "[ 123][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\"");
    return std::regex_replace(text, time, "*\"");
}

std::string Entry(const std::string &message, const std::string &title, const std::string &file = "a.cpp")
{
    return "<Error><Message Name=\"" + message + "\" Description=\"" + title +
           "\"/><Message Name=\"Time Stamp\" Description=\"*\"/><Message Name=\"Error\" Filename=\"" + file +
           "\" LineNumber=\"7\"/><Message Date=\"&quot;Mar 20 2020&quot;\"/></Error>";
}

class ErrorFileTest : public testing::Test
{
protected:
    Status Write(const std::string &message, const std::string &title, const std::string &file = "a.cpp") const
    {
        return WriteErrorEntry(m_path.c_str(), message.c_str(), title.c_str(), file.c_str(), "7", "\"Mar 20 2020\"");
    }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.Path("Error.xml");
};

TEST_F(ErrorFileTest, GrowsByOneEntryPerReport)
{
    EXPECT_EQ(Write("First & only\t\n", "Class - \xF0\x9F\x98\x80", "dir\t/<a>.cpp"), StatusCode::Success);
    EXPECT_EQ(Write("Second", "T \xFF"), StatusCode::Success);
    EXPECT_EQ(MaskTimes(ReadFile(m_path)),
              std::string(kDeclaration) + "<Tool Name=\"Tarnwell\">" +
                  Entry("First &amp; only..", "Class - &#x1F600;", "dir&#9;/&lt;a&gt;.cpp") +
                  Entry("Second", "T &#xFFFD;") + "</Tool>\n");
}

TEST_F(ErrorFileTest, KeepsWhatCanBeParsedAndReplacesWhatCannot)
{
    const struct
    {
        const char *before;
        std::string after;
        const char *line;
    } cases[] = {
        {"<Other a='1'><Error/>text</Other>", "<Other a=\"1\"><Error/>text" + Entry("M", "T") + "</Other>", ""},
        {"<Tool><Error></Tool>", "<Tool Name=\"Tarnwell\">" + Entry("M", "T") + "</Tool>", "Failed to XML file ["},
        {"", "<Tool Name=\"Tarnwell\">" + Entry("M", "T") + "</Tool>", "Failed to XML file ["},
    };
    const TraceLog log("ErrorUIXMLWriter", TRACE_ERROR);
    for (const auto &[before, after, line] : cases)
    {
        WriteFile(m_path, before);
        EXPECT_EQ(Write("M", "T"), StatusCode::Success);
        EXPECT_EQ(MaskTimes(ReadFile(m_path)), kDeclaration + after + '\n') << before;
        const std::string function = " **ERROR**  Fn:ErrorUIXMLWriter::GetRootNodeFromExistingXML ";
        const std::vector<std::string> expected = {function + line + m_path + "]\n"};
        EXPECT_EQ(TraceLog::Take(), *line ? expected : std::vector<std::string>()) << before;
    }
    // The first damaged file is kept, and only that.
    EXPECT_EQ(ReadFile(m_path + ".damaged"), "<Tool><Error></Tool>");
    WriteFile(m_path, "<Tool>again");
    EXPECT_EQ(Write("M", "T"), StatusCode::Success);
    EXPECT_EQ(ReadFile(m_path + ".damaged"), "<Tool><Error></Tool>");
}

TEST_F(ErrorFileTest, TellsWhyNothingWasWritten)
{
    const TraceLog log("ErrorUIXMLWriter", TRACE_ERROR);
    WriteFile(m_path, "<Tool/>");
    const std::string fn = " **ERROR**  Fn:ErrorUIXMLWriter::";
    EXPECT_EQ(WriteErrorEntry(m_path.c_str(), "m", "t", "f", nullptr, "d"), StatusCode::NotFound);
    EXPECT_EQ(WriteErrorEntry(nullptr, "m", "t", "f", "7", "d"), StatusCode::NotFound);
    EXPECT_EQ(WriteErrorEntry("", "m", "t", "f", "7", "d"), StatusCode::NotFound);
    EXPECT_EQ(TraceLog::Take(), std::vector{fn + "Initialize fileName is empty\n"});
    EXPECT_EQ(Write("", "T"), StatusCode::NotFound);
    EXPECT_EQ(Write("M", ""), StatusCode::NotFound);
    EXPECT_EQ(TraceLog::Take(), std::vector(2, fn + "AddErrorDetails empty parameter(s)\n"));
    EXPECT_EQ(ReadFile(m_path), "<Tool/>");
    m_path = m_directory.Path("no folder/Error.xml");
    EXPECT_EQ(Write("M", "T"), StatusCode::Failed);
    EXPECT_EQ(TraceLog::Take(), std::vector{fn + "SaveDataFile CCXmlSave failed with 5\n"});

    ErrorUIXMLWriter writer;
    EXPECT_EQ(writer.Initialize("", "f"), StatusCode::NotFound);
    EXPECT_EQ(writer.AddErrorDetails("m", "t", "now", "", "", ""), StatusCode::Missing);
    EXPECT_EQ(writer.SaveDataFile("f"), StatusCode::Missing);
    EXPECT_EQ(writer.SaveDataFile(""), StatusCode::NotFound);
}

TEST_F(ErrorFileTest, WritersOfSeveralThreadsLoseNothing)
{
    const auto write = [this](int count)
    {
        while (count-- > 0)
            EXPECT_EQ(Write("M", "T"), StatusCode::Success);
    };
    std::thread first(
        [&]
        {
            const Platform::MutexLock lock(getSingletonInstance()->errorFileMutex); // a holder may take it again
            EXPECT_TRUE(lock);
            write(5);
        });
    std::thread second(write, 20);
    write(20);
    first.join();
    second.join();
    std::string entries;
    for (int count = 0; count < 45; ++count)
        entries += Entry("M", "T");
    EXPECT_EQ(MaskTimes(ReadFile(m_path)), kDeclaration + ("<Tool Name=\"Tarnwell\">" + entries) + "</Tool>\n");
}

TEST_F(ErrorFileTest, FirstCompleteLocationStays)
{
    const auto report = [](const char *message) { return ReportError(message, "T", "f", "7", "d"); };
    const std::string first = m_directory.Path("");
    const std::string second = m_directory.Path("second/");
    EXPECT_EQ(report("before any location"), StatusCode::Success);
    EXPECT_EQ(InitErrorFile(nullptr, "Error.xml"), StatusCode::Failed);
    EXPECT_EQ(InitErrorFile(first.c_str(), nullptr), StatusCode::Failed);
    EXPECT_EQ(InitErrorFile("", "Error.xml"), StatusCode::Success);
    EXPECT_EQ(report("without a directory"), StatusCode::Success);
    EXPECT_FALSE(std::filesystem::exists(m_path));
    EXPECT_EQ(InitErrorFile(first.c_str(), "Error.xml"), StatusCode::Success);
    EXPECT_EQ(InitErrorFile(second.c_str(), "Other.xml"), StatusCode::Success);
    EXPECT_EQ(report(nullptr), StatusCode::NotFound);
    EXPECT_EQ(report("M"), StatusCode::Success);
    EXPECT_NE(ReadFile(m_path).find("<Message Name=\"M\" Description=\"T\"/>"), std::string::npos);
}

} // namespace
