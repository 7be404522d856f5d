#include "ModuleLogJSONWriter.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{

constexpr const char *kPlainRowsGroup = "PCI Dump";

} // namespace

ModuleLogJSONWriter::ModuleLogJSONWriter() : ModuleJSONWriter("ModuleLogJSONWriter") {}

void ModuleLogJSONWriter::StartModule()
{
    EndModule();
}

void ModuleLogJSONWriter::StartSubModule()
{
    m_items.Clear();
    m_group.Clear();
}

void ModuleLogJSONWriter::StartTab(std::string /*tabName*/)
{
    m_group.Clear();
    m_columnsByName.resize(m_headers.size());
    std::iota(m_columnsByName.begin(), m_columnsByName.end(), std::size_t{0});
    // Stable, so that of two cells under one name the later one stays.
    std::stable_sort(m_columnsByName.begin(), m_columnsByName.end(),
                     [this](std::size_t left, std::size_t right) { return m_headers[left] < m_headers[right]; });
}

nlohmann::json ModuleLogJSONWriter::MakeItem(std::string_view row)
{
    if (m_plainRows || IsPlainGroup())
        return std::string(row);
    const std::vector<std::string_view> cells = SplitViews(row, kCellSeparator);
    json::object_t item;
    for (const std::size_t column : m_columnsByName)
    {
        if (column < cells.size())
            item.insert_or_assign(item.end(), m_headers[column], std::string(cells[column]));
    }
    return item;
}

void ModuleLogJSONWriter::EndModule()
{
    m_items.Clear();
    m_group.Clear();
    m_subModule.Clear();
    m_module.clear();
    m_headers.clear();
    m_columnsByName.clear();
    m_subModCount = m_tabCount = m_groupCount = 0;
}

bool ModuleLogJSONWriter::IsPlainGroup()
{
    // A row without a group makes one without a name.
    const json &name = m_group.Value()["GroupName"];
    return name.is_string() && name.get_ref<const std::string &>() == kPlainRowsGroup;
}
