#include "WriterScript.h"

namespace
{

std::string Combined(const std::string &html, const std::string &xml)
{
    return "HTML_LOG_DATA_BEGIN" + html + "HTML_LOG_DATA_ENDXML_LOG_DATA_BEGIN" + xml + "XML_LOG_DATA_END";
}

TEST(ModuleLogHTMLXMLWriter, HoldsWhatBothWritersMake)
{
    const std::vector<WriterCall> calls = {Init("M", "not stored"), SubMod("S"), Tab("T", "a,b"), Group("G"),
                                           Row("\"A\", \"B\""),     Copy()};
    EXPECT_EQ(RunWriter(OutputKind::LogHtmlXml, calls),
              Combined(RunWriter(OutputKind::LogHtml, calls), RunWriter(OutputKind::LogXml, calls)));
}

TEST(ModuleLogHTMLXMLWriter, IgnoresFailuresOfItsWriters)
{
    const std::string html = "<a name=\"M\"></a><h2>M</h2>";
    const WriterCase cases[] = {
        {"a writer without a document repeats what the text held",
         {Group("G"), Row("\"A\""), SubMod("S"), Tab("T", "a"), UnInit()},
         Combined("before", "before")},
        {"each copy starts from the text of the last",
         {Copy()},
         Combined(Combined("before", "before"), Combined("before", "before"))},
        {"a row that only the HTML takes, and a group without a name, which none gets",
         {Init("M"), Row("x"), Group("").Fails(StatusCode::NotFound, "NULL argument(s)\n")},
         Combined(html + "<tr><td width=\"100%\">x</td></tr></table><br></br>",
                  "<?xml version=\"1.0\"?>\n<Module Name=\"M\"/>\n")},
    };
    CheckDocuments(OutputKind::LogHtmlXml, cases);
}

} // namespace
