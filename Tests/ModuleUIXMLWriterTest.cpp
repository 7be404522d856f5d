#include "WriterScript.h"

namespace
{

std::string Tree(const std::string &attributes, const std::string &content)
{
    return "<?xml version=\"1.0\"?>\n<TreeItem Name=\"M\"" + attributes + ">" + content + "</TreeItem>\n";
}

TEST(ModuleUIXMLWriter, Documents)
{
    const std::string face = "\xF0\x9F\x99\x82";
    const WriterCase cases[] = {
        {"sub-modules, tabs, groups; a group before the tab of its sub-module",
         {Init("M", "D & E"), SubMod("S\t"), Tab("T", "a, b"), Tab("U", "c"), Group("G\n"), SubMod("V"), Group(""),
          Row("\"A\""), Tab("W", "d"), Copy()},
         Tree(" Description=\"D &amp; E\"",
              "<TreeList><TreeItem Name=\"S.\"><TabControl><Tab Name=\"T\"><Grid><Header>a, b</Header></Grid></Tab>"
              "<Tab Name=\"U\"><Grid><Header>c</Header><Group Name=\"G.\"/><Group Name=\"\"><Row>\"A\"</Row></Group>"
              "</Grid></Tab></TabControl></TreeItem><TreeItem Name=\"V\"><TabControl><Tab Name=\"W\"><Grid>"
              "<Header>d</Header></Grid></Tab></TabControl></TreeItem></TreeList>")},
        {"rows are stored whole, as they are",
         {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\", \"<&lt;\t" + face + "\xE9\""), Row("x")},
         Tree("",
              "<TabControl><Tab Name=\"T\"><Grid><Header>a</Header><Group Name=\"G\">"
              "<Row>\"A\", \"&lt;&amp;lt;.&#x1F642;&#xFFFD;\"</Row><Row>x</Row></Group></Grid></Tab></TabControl>")},
        {"no group before a tab, no row before a group",
         {Init("M"), Group("G").Fails(StatusCode::Missing, "NULL Pointer:m_pDoc\n"), Tab("T", "a"),
          Row("\"A\"").Fails(StatusCode::Missing, "NULL Pointer(s)\n")},
         Tree("", "<TabControl><Tab Name=\"T\"><Grid><Header>a</Header></Grid></Tab></TabControl>")},
    };
    CheckDocuments(OutputKind::UiXml, cases);
}

} // namespace
