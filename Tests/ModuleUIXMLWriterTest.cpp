#include "ModuleUIXMLWriter.h"
#include "ModuleSupport.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{

using TestSupport::TraceLog;

constexpr const char *kHeader = "Name,Value,Prompt,Description";
constexpr const char *kDeclaration = "<?xml version=\"1.0\"?>\n";

std::string Finish(ModuleDataWriter &writer)
{
    std::string text = "before";
    EXPECT_EQ(writer.CopyDataToBuffer(text), StatusCode::Success);
    return text;
}

TEST(ModuleUIXMLWriter, BuildsTheTree)
{
    ModuleUIXMLWriter writer;
    EXPECT_EQ(writer.Initialize("BIOS\tOptions & more", "made \xE9 \"here\""), StatusCode::Success);
    EXPECT_EQ(writer.AddTab("T<1>", kHeader), StatusCode::Success);
    EXPECT_EQ(writer.AddGroup("G&\t1"), StatusCode::Success);
    EXPECT_EQ(writer.AddRow("\"A\", \"<&amp;>\t\xC3\xA9\""), StatusCode::Success);
    EXPECT_EQ(writer.AddRow("\"\xF0\x9F\x98\x80\", \"R&D; on\""), StatusCode::Success);
    EXPECT_EQ(writer.AddTab("T2", "A & B,&#65;"), StatusCode::Success);
    EXPECT_EQ(writer.AddSubMod("S1\n"), StatusCode::Success);
    EXPECT_EQ(writer.AddGroup(""), StatusCode::Success); // still into the grid of the last tab
    EXPECT_EQ(writer.AddTab("T3", kHeader), StatusCode::Success);
    EXPECT_EQ(writer.AddSubMod("S2"), StatusCode::Success);
    const std::string expected =
        std::string(kDeclaration) +
        "<TreeItem Name=\"BIOS&#9;Options &amp; more\" Description=\"made &#xFFFD; &quot;here&quot;\"><TabControl>"
        "<Tab Name=\"T&lt;1&gt;\"><Grid><Header>Name,Value,Prompt,Description</Header><Group Name=\"G&amp;.1\">"
        "<Row>\"A\", \"&lt;&amp;amp;&gt;.&#xE9;\"</Row><Row>\"&#x1F600;\", \"R&amp;D; on\"</Row></Group></Grid></Tab>"
        "<Tab Name=\"T2\"><Grid><Header>A &amp; B,&amp;#65;</Header><Group Name=\"\"/></Grid></Tab></TabControl>"
        "<TreeList><TreeItem Name=\"S1.\"><TabControl><Tab Name=\"T3\"><Grid><Header>Name,Value,Prompt,Description"
        "</Header></Grid></Tab></TabControl></TreeItem><TreeItem Name=\"S2\"/></TreeList></TreeItem>\n";
    EXPECT_EQ(Finish(writer), expected);
    EXPECT_EQ(Finish(writer), expected);
    EXPECT_EQ(writer.UnInitialize(), StatusCode::Success);

    // Nothing of the last report is left for the next.
    EXPECT_EQ(writer.Initialize("M", ""), StatusCode::Success);
    EXPECT_EQ(writer.AddGroup("G"), StatusCode::Missing);
    EXPECT_EQ(Finish(writer), std::string(kDeclaration) + "<TreeItem Name=\"M\"/>\n");
    EXPECT_EQ(writer.UnInitialize(), StatusCode::Success);
}

TEST(ModuleUIXMLWriter, RefusesWhatIsMissingWithItsLine)
{
    ModuleUIXMLWriter fresh;
    ModuleUIXMLWriter started;
    ASSERT_EQ(started.Initialize("M", ""), StatusCode::Success);
    std::string buffer = "before";
    const struct
    {
        const char *operation;
        const char *message;
        Status status;
        std::function<Status()> call;
    } cases[] = {
        {"Initialize", "moduleName is empty\n", 2, [&] { return fresh.Initialize("", "d"); }},
        {"AddSubMod", "subModName is empty\n", 2, [&] { return fresh.AddSubMod(""); }},
        {"AddSubMod", "NULL Pointer:m_pDoc\n", 4, [&] { return fresh.AddSubMod("s"); }},
        {"AddTab", "empty parameter(s)\n", 2, [&] { return fresh.AddTab("", "h"); }},
        {"AddTab", "empty parameter(s)\n", 2, [&] { return fresh.AddTab("t", ""); }},
        {"AddTab", "NULL Pointer:m_pDoc\n", 4, [&] { return fresh.AddTab("t", "h"); }},
        {"AddGroup", "NULL Pointer:m_pDoc\n", 4, [&] { return fresh.AddGroup(""); }},
        {"AddGroup", "NULL Pointer:m_pDoc\n", 4, [&] { return started.AddGroup("g"); }},
        {"AddRow", "rowContent is empty\n", 2, [&] { return fresh.AddRow(""); }},
        {"AddRow", "NULL Pointer(s)\n", 4, [&] { return started.AddRow("r"); }},
        {"CopyDataToBuffer", "NULL Pointer:m_pDoc\n", 4, [&] { return fresh.CopyDataToBuffer(buffer); }},
        {"UnInitialize", "NULL Pointer:m_pDoc\n", 4, [&] { return fresh.UnInitialize(); }},
    };
    CCInitializeXMLParser(); // for the last case, which ends a bracket it did not begin
    const TraceLog log("ModuleUIXMLWriter");
    for (const auto &row : cases)
    {
        const std::string function = std::string(" Fn:ModuleUIXMLWriter::") + row.operation + ' ';
        TraceLog::Take();
        EXPECT_EQ(row.call(), row.status) << function;
        EXPECT_EQ(TraceLog::Take(),
                  (std::vector{" --> " + function + '\n', " **ERROR**  <-- " + function + row.message}));
    }
    EXPECT_EQ(buffer, "before");
    EXPECT_EQ(started.UnInitialize(), StatusCode::Success);
    EXPECT_EQ(TraceLog::Take(), (std::vector<std::string>{" -->  Fn:ModuleUIXMLWriter::UnInitialize \n",
                                                          " <--  Fn:ModuleUIXMLWriter::UnInitialize \n"}));
}

} // namespace
