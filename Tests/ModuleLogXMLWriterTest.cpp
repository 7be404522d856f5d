#include "WriterScript.h"

namespace
{

/// A log of the module M.
std::string Log(const std::string &content)
{
    return "<?xml version=\"1.0\"?>\n<Module Name=\"M\">" + content + "</Module>\n";
}

TEST(ModuleLogXMLWriter, Documents)
{
    const std::string face = "\xF0\x9F\x99\x82";
    const WriterCase cases[] = {
        {"a log with a sub-module",
         {Init("M", "not stored"), SubMod("S\t"), Tab("T", "Name,Current Value"), Group("G\n"),
          Row("\"A\", \"B & <C>\""), Copy()},
         Log("<SubModule Name=\"S.\"><Group Name=\"G.\"><Item Name=\"A\" CurrentValue=\"B &amp; &lt;C&gt;\"/>"
             "</Group></SubModule>")},
        {"eight columns, and the characters that are replaced or kept",
         {Init("M"), Tab("T", "a,b,c,d,e,f,g,h"), Group("G"),
          Row("\"1\", \"\x01\", \"\xE9\", \"" + face + "\", \"&#65;\", \"\", \"7\", \"8\"")},
         Log("<Group Name=\"G\"><Item a=\"1\" b=\".\" c=\"&#xFFFD;\" d=\"&#x1F642;\" e=\"&amp;#65;\" f=\"\" g=\"7\" "
             "h=\"8\"/></Group>")},
        {"nine columns become one, which keeps the closing quotation mark",
         {Init("M"), Tab("T", "a,b,c,d,e,f,g,h,i"), Group("G"), Row("\"A\""), Row("\"A\", \"B\"")},
         Log("<Group Name=\"G\"><Item Value=\"A&quot;\"/><Item>\"A\", \"B\"</Item></Group>")},
        {"too few and too many cells: the row whole, as it is",
         {Init("M"), Tab("T", "a,b"), Group("G"), Row("\"A & &lt; " + face + "\t\""), Row("\"A\", \"B\", \"C\"")},
         Log("<Group Name=\"G\"><Item>\"A &amp; &amp;lt; &#x1F642;.\"</Item><Item>\"A\", \"B\", \"C\"</Item></Group>")},
        {"a row of nothing but the separator, and rows of one character",
         {Init("M"), Tab("T", "a,b"), Group("G"), Row("\", \""), Row("x"), Tab("T", "a"), Row("\"")},
         Log("<Group Name=\"G\"><Item a=\"\" b=\"\"/><Item>x</Item><Item a=\"\"/></Group>")},
        {"groups without a name are called after the tab; rows before a tab",
         {Init("M"), Group(""), Row("\"A\""), Tab("T\t", "a"), Group("")},
         Log("<Group Name=\"\"><Item>\"A\"</Item></Group><Group Name=\"T.\"/>")},
        {"a sub-module after groups and tabs: its rows still go to the last group",
         {Init("M"), Tab("T", "a,b"), Group("G"), SubMod("S"), Row("\"A\", \"B\""), Group(""), SubMod("U"), Group("H")},
         Log("<Group Name=\"G\"><Item a=\"A\" b=\"B\"/></Group><SubModule Name=\"S\"><Group Name=\"T\"/></SubModule>"
             "<SubModule Name=\"U\"><Group Name=\"H\"/></SubModule>")},
        {"a second document", {Init("N"), Tab("T", "a"), Group("G"), Init("M"), Group("")}, Log("<Group Name=\"T\"/>")},
    };
    CheckDocuments(OutputKind::LogXml, cases);
}

} // namespace
