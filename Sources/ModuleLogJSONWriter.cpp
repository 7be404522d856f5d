#include "ModuleLogJSONWriter.h"

#include <utility>

namespace
{

constexpr const char *kPlainRowsGroup = "PCI Dump";

constexpr JSONWriterNames kNames = {
    "ModuleLogJSONWriter",
    "ModuleLogJSONWriter::ModuleLogJSONWriter",
    "ModuleLogJSONWriter::~ModuleLogJSONWriter",
    "ModuleLogJSONWriter::Initialize",
    "ModuleLogJSONWriter::AddSubMod",
    "ModuleLogJSONWriter::AddTab",
    "ModuleLogJSONWriter::AddGroup",
    "ModuleLogJSONWriter::AddRow",
    "ModuleLogJSONWriter::CopyDataToBuffer",
    "ModuleLogJSONWriter::UnInitialize",
};

} // namespace

ModuleLogJSONWriter::ModuleLogJSONWriter() : ModuleJSONWriter(kNames) {}

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
}

nlohmann::json ModuleLogJSONWriter::MakeItem(std::string_view row)
{
    if (m_plainRows || IsPlainGroup())
        return std::string(row);
    json::object_t item;
    auto name = m_headers.begin();
    const auto add = [&](std::string_view cell)
    {
        if (name != m_headers.end())
            item.insert_or_assign(*name++, std::string(cell));
    };
    ForEachPiece(row, kCellSeparator, add);
    return item;
}

void ModuleLogJSONWriter::EndModule()
{
    m_items.Clear();
    m_group.Clear();
    m_subModule.Clear();
    m_module.clear();
    m_headers.clear();
    m_subModCount = m_tabCount = m_groupCount = 0;
}

bool ModuleLogJSONWriter::IsPlainGroup()
{
    // A row without a group makes one without a name.
    const json &name = m_group.Value()["GroupName"];
    return name.is_string() && name.get_ref<const std::string &>() == kPlainRowsGroup;
}
