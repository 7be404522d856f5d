#include "ModuleUIJSONWriter.h"

#include <utility>

ModuleUIJSONWriter::ModuleUIJSONWriter() : ModuleJSONWriter("ModuleUIJSONWriter") {}

void ModuleUIJSONWriter::StartModule()
{
    // An earlier document stays, and so must every part that may still point into it.
    for (JSONPart *part : {&m_subModule, &m_tab, &m_group, &m_items})
        part->Value();
}

void ModuleUIJSONWriter::StartTab(std::string tabName)
{
    m_tab.Clear();
    m_tab.Value()["TabName"] = std::move(tabName);
    for (const std::string &title : m_headers)
        m_tab.Value()["TabHeader"].push_back(title);
}

void ModuleUIJSONWriter::CompleteTab()
{
    CompleteGroup();
    m_tab.AppendTo(SubModuleOrModule()["tabs"]);
}

nlohmann::json ModuleUIJSONWriter::MakeItem(std::string_view row)
{
    if (m_plainRows)
        return json::object({{m_headers.empty() ? "" : m_headers.front(), std::string(row)}});
    json::array_t item;
    item.reserve(m_headers.size());
    ForEachPiece(row, kCellSeparator, [&item](std::string_view cell) { item.emplace_back(std::string(cell)); });
    return item;
}
