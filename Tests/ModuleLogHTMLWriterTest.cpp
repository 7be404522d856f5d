#include "WriterScript.h"

namespace
{

const std::string kHeading = "<a name=\"My_own_M\"></a><h2>My own M</h2>";
const std::string kEnd = "</table><br></br>";

std::string Table(const std::string &content)
{
    return "<table border=\"1\"><tr class=\"title\">" + content;
}
std::string Title(const std::string &width, const std::string &text)
{
    return "<td width=\"" + width + "%\" style=\"font-weight: bold; height: 30px;\">" + text + "</td>";
}
std::string Cell(const std::string &width, const std::string &text)
{
    return "<td width=\"" + width + "%\">" + text + "</td>";
}
std::string GroupRow(const std::string &span, const std::string &name)
{
    return "<tr class=\"title\"><td colspan=\"" + span + "\">" + name + "</td></tr>";
}

TEST(ModuleLogHTMLWriter, Documents)
{
    const WriterCall init = Init("My own M", "not stored");
    std::string tenTitles;
    for (char title = 'a'; title <= 'j'; ++title)
        tenTitles += Title("10", {title});
    const WriterCase cases[] = {
        {"only a heading", {init, Copy()}, kHeading + kEnd},
        {"three columns, markup as it is, a row of two cells",
         {init, SubMod("S & S"), Tab("T", "a,b,"), Group("<G>"), Row("\"A\", \"<b>\", \"\xE9\""), Row("\"A\", \"B\"")},
         kHeading + "<h3>S & S</h3>" + Table(Title("33", "a") + Title("33", "b") + Title("33", "") + "</tr>") +
             GroupRow("3", "<G>") + "<tr>" + Cell("33", "A") + Cell("33", "<b>") + Cell("33", "\xE9") + "</tr><tr>" +
             Cell("33", "A") + Cell("33", "B") + "</tr>" + kEnd},
        {"one column: the title names the tab, rows stay whole",
         {init, Tab("T", "Value"), Group(""), Row("\"A\", \"B\"")},
         kHeading + Table(Title("100", "T - Value") + "</tr>") + GroupRow("1", "") + "<tr>" +
             Cell("100", "\"A\", \"B\"") + "</tr>" + kEnd},
        {"ten columns, and a single cell, which is kept whole",
         {init, Tab("T", "a,b,c,d,e,f,g,h,i,j"), Row("\"A\""), Row("\", \"")},
         kHeading + Table(tenTitles + "</tr>") + "<tr>" + Cell("10", "\"A\"") + "</tr><tr>" + Cell("10", "") +
             Cell("10", "") + "</tr>" + kEnd},
        {"eleven columns become one",
         {init, Tab("T", "a,b,c,d,e,f,g,h,i,j,k"), Row("\"A\", \"B\"")},
         kHeading + Table(Title("100", "a,b,c,d,e,f,g,h,i,j,k") + "</tr>") + "<tr>" + Cell("100", "\"A\", \"B\"") +
             "</tr>" + kEnd},
        {"before any tab there is one wide column",
         {init, Group("G"), Row("\"A\", \"B\""), Row("x")},
         kHeading + GroupRow("1", "G") + "<tr>" + Cell("100", "\"A\", \"B\"") + "</tr><tr>" + Cell("100", "x") +
             "</tr>" + kEnd},
        {"how tables end",
         {init, Tab("T", "a"), Tab("T", "b"), SubMod("S"), Tab("T", "c"), Copy(), SubMod("U")},
         kHeading + Table(Title("100", "T - a") + "</tr>") + kEnd + Table(Title("100", "T - b") + "</tr>") +
             "<h3>S</h3>" + Table(Title("100", "T - c") + "</tr>") + "</table><h3>U</h3>" + kEnd},
        {"a second document", {Init("N"), SubMod("S"), init, SubMod("U")}, kHeading + "<h3>U</h3>" + kEnd},
    };
    CheckDocuments(OutputKind::LogHtml, cases);
}

} // namespace
