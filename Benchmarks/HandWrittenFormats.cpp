#include "HandWrittenFormats.h"

#include <cstring>

namespace
{

using nlohmann::json;

xmlNodePtr FindGroup(std::map<std::string, xmlNodePtr> &groups, const std::string &name)
{
    xmlNodePtr &group = groups[name];
    if (!group)
        group = xmlNewNode(nullptr, AsXml("Group"));
    return group;
}

void AddGroups(xmlNodePtr parent, const std::map<std::string, xmlNodePtr> &groups)
{
    for (const auto &[name, group] : groups)
    {
        xmlAddChild(parent, group);
        xmlSetProp(group, AsXml("Name"), AsXml(name.c_str()));
    }
}

xmlNodePtr MakeRoot(xmlDocPtr document, const char *name)
{
    const xmlNodePtr root = xmlNewNode(nullptr, AsXml(name));
    xmlDocSetRootElement(document, root);
    xmlSetProp(root, AsXml("Name"), AsXml("BIOS Options"));
    return root;
}

std::string Dump(xmlDocPtr document)
{
    xmlChar *block = nullptr;
    int size = 0;
    xmlDocDumpMemory(document, &block, &size);
    std::string report(reinterpret_cast<const char *>(block), static_cast<std::size_t>(size));
    xmlFree(block);
    xmlFreeDoc(document);
    return report;
}

void AppendCell(std::string &row, const char *text)
{
    for (const char *found = std::strchr(text, '&'); found; found = std::strchr(text, '&'))
    {
        row.append(text, found).append("&amp;");
        text = found + 1;
    }
    row += text;
}

json MakeGroups(std::map<std::string, json> &items)
{
    json groups = json::array();
    for (auto &[name, group] : items)
    {
        groups.emplace_back(json::value_t::object);
        groups.back()["GroupName"] = name;
        groups.back()["items"] = std::move(group);
    }
    return groups;
}

} // namespace

void UiXml::Add(const Knob &knob)
{
    std::string row = "\"";
    AppendCell(row, knob.name);
    row += "\", \"";
    AppendCell(row, knob.value);
    row += "\", \"";
    AppendCell(row, knob.prompt);
    row += "\", \"";
    AppendCell(row, knob.description);
    row += '"';
    const xmlNodePtr node = xmlNewNode(nullptr, AsXml("Row"));
    xmlNodeSetContent(node, AsXml(row.c_str()));
    xmlAddChild(FindGroup(m_groups, knob.group), node);
}

std::string UiXml::Finish()
{
    const xmlDocPtr report = xmlNewDoc(nullptr);
    const xmlNodePtr tabs = xmlAddChild(MakeRoot(report, "TreeItem"), xmlNewNode(nullptr, AsXml("TabControl")));
    const xmlNodePtr tab = xmlAddChild(tabs, xmlNewNode(nullptr, AsXml("Tab")));
    xmlSetProp(tab, AsXml("Name"), AsXml("Bios Options"));
    const xmlNodePtr grid = xmlAddChild(tab, xmlNewNode(nullptr, AsXml("Grid")));
    xmlNewChild(grid, nullptr, AsXml("Header"), AsXml("Name,Value,Prompt,Description"));
    AddGroups(grid, m_groups);
    return Dump(report);
}

void LogXml::Add(const Knob &knob)
{
    const xmlNodePtr node = xmlNewNode(nullptr, AsXml("Item"));
    xmlSetProp(node, AsXml("Name"), AsXml(knob.name));
    xmlSetProp(node, AsXml("Value"), AsXml(knob.value));
    xmlSetProp(node, AsXml("Prompt"), AsXml(knob.prompt));
    xmlSetProp(node, AsXml("Description"), AsXml(knob.description));
    xmlAddChild(FindGroup(m_groups, knob.group), node);
}

std::string LogXml::Finish()
{
    const xmlDocPtr report = xmlNewDoc(nullptr);
    AddGroups(MakeRoot(report, "Module"), m_groups);
    return Dump(report);
}

void LogHtml::Add(const Knob &knob)
{
    std::string &group = m_groups[knob.group];
    group += "<tr>";
    for (const char *const cell : {knob.name, knob.value, knob.prompt, knob.description})
        group.append("<td width=\"25%\">").append(cell).append("</td>");
    group += "</tr>";
}

std::string LogHtml::Finish()
{
    std::string report = "<a name=\"BIOS_Options\"></a><h2>BIOS Options</h2><table border=\"1\"><tr class=\"title\">";
    for (const char *const title : {"Name", "Value", "Prompt", "Description"})
        report.append("<td width=\"25%\" style=\"font-weight: bold; height: 30px;\">").append(title).append("</td>");
    report += "</tr>";
    for (auto &[name, group] : m_groups)
    {
        report.append("<tr class=\"title\"><td colspan=\"4\">").append(name).append("</td></tr>").append(group);
        group = std::string();
    }
    return report.append("</table><br></br>");
}

void LogHtmlXml::Add(const Knob &knob)
{
    m_html.Add(knob);
    m_xml.Add(knob);
}

std::string LogHtmlXml::Finish()
{
    return "HTML_LOG_DATA_BEGIN" + m_html.Finish() + "HTML_LOG_DATA_ENDXML_LOG_DATA_BEGIN" + m_xml.Finish() +
           "XML_LOG_DATA_END";
}

void LogJson::Add(const Knob &knob)
{
    json::object_t item;
    item["Name"] = knob.name;
    item["Value"] = knob.value;
    item["Prompt"] = knob.prompt;
    item["Description"] = knob.description;
    m_groups[knob.group].push_back(std::move(item));
}

std::string LogJson::Finish()
{
    json report;
    report["ModuleName"] = "BIOS Options";
    report["groups"] = MakeGroups(m_groups);
    return report.dump();
}

void UiJson::Add(const Knob &knob)
{
    json::array_t item;
    item.reserve(4);
    for (const char *const cell : {knob.name, knob.value, knob.prompt, knob.description})
        item.emplace_back(cell);
    m_groups[knob.group].push_back(std::move(item));
}

std::string UiJson::Finish()
{
    json tab;
    tab["TabName"] = "Bios Options";
    tab["TabHeader"] = {"Name", "Value", "Prompt", "Description"};
    tab["groups"] = MakeGroups(m_groups);
    json report;
    report["ModuleName"] = "BIOS Options";
    report["tabs"].push_back(std::move(tab));
    return report.dump();
}
