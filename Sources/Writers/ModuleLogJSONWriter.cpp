#include "ModuleLogJSONWriter.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

ModuleLogJSONWriter::ModuleLogJSONWriter() : ModuleJSONWriter("ModuleLogJSONWriter", "groups") {}

void ModuleLogJSONWriter::StartModule()
{
    EndModule();
}

void ModuleLogJSONWriter::StartSubModule()
{
    m_items.ClearArray();
    ForgetGroup();
}

void ModuleLogJSONWriter::StartTab(std::string_view /*tabName*/)
{
    ForgetGroup();
    m_keys.clear();
    for (const std::string &header : m_headers)
    {
        m_keys.emplace_back().AppendString(header);
        m_keys.back().Append(":");
    }
    m_columnsByName.resize(m_headers.size());
    std::iota(m_columnsByName.begin(), m_columnsByName.end(), std::size_t{0});
    std::sort(m_columnsByName.begin(), m_columnsByName.end(),
              [this](std::size_t left, std::size_t right)
              { return std::tie(m_headers[left], left) < std::tie(m_headers[right], right); });
}

void ModuleLogJSONWriter::AppendItem(JSONText &items, std::string_view row)
{
    if (m_plainRows || m_isPlainGroup)
        return items.AppendString(row);
    // A row without a group makes one without a name.
    if (m_groupName.IsEmpty())
        m_groupName.Append("null");
    const std::vector<std::string_view> cells = SplitViews(row, kCellSeparator);
    std::string_view separator = "{";
    for (auto column = m_columnsByName.begin(); column != m_columnsByName.end(); ++column)
    {
        // Of two cells under one name the later one stays.
        const auto next = column + 1;
        const bool isReplaced =
            next != m_columnsByName.end() && *next < cells.size() && m_headers[*next] == m_headers[*column];
        if (*column >= cells.size() || isReplaced)
            continue;
        items.Append(std::exchange(separator, ","));
        items.Append(m_keys[*column]);
        items.AppendString(cells[*column]);
    }
    items.Append(separator == "{" ? "{}" : "}");
}

void ModuleLogJSONWriter::EndModule()
{
    m_items.ClearArray();
    ForgetGroup();
    for (JSONText *text :
         {&m_moduleName, &m_moduleDescription, &m_moduleList, &m_subModuleList, &m_subModName, &m_subModList})
        text->Clear();
    m_headers.clear();
    m_keys.clear();
    m_columnsByName.clear();
    m_subModCount = m_tabCount = m_groupCount = 0;
}

void ModuleLogJSONWriter::ForgetGroup()
{
    m_groupName.Clear();
    m_isPlainGroup = false;
}
