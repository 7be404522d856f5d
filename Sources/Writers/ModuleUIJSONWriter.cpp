#include "ModuleUIJSONWriter.h"

#include <utility>

ModuleUIJSONWriter::ModuleUIJSONWriter() : ModuleJSONWriter("ModuleUIJSONWriter", "tabs") {}

void ModuleUIJSONWriter::StartTab(std::string_view tabName)
{
    JSONText name;
    name.AppendString(tabName);
    JSONText titles;
    for (const std::string &title : m_headers)
        titles.AddElement([&title](JSONText &list) { list.AppendString(title); });
    m_tabName = std::move(name);
    m_tabHeader = std::move(titles);
    m_tabList.Clear();
}

void ModuleUIJSONWriter::CompleteTab()
{
    CompleteGroup();
    PartList().AddElement(
        [this](JSONText &tabs) {
            tabs.AppendObject({{"TabHeader", m_tabHeader, "]"}, {"TabName", m_tabName}, {"groups", m_tabList, "]"}});
        });
}

void ModuleUIJSONWriter::AppendItem(JSONText &items, std::string_view row)
{
    if (m_plainRows)
    {
        items.Append("{");
        items.AppendString(m_headers.empty() ? "" : m_headers.front());
        items.Append(":");
        items.AppendString(row);
        return items.Append("}");
    }
    std::string_view separator = "[";
    ForEachPiece(row, kCellSeparator,
                 [&](std::string_view cell)
                 {
                     items.Append(std::exchange(separator, ","));
                     items.AppendString(cell);
                 });
    items.Append("]");
}
