#include "ModuleJSONWriter.h"

#include <utility>

namespace
{

constexpr std::string_view kPlainRowsModule = "ACPI";
constexpr int kOneLine = -1;

} // namespace

nlohmann::json &JSONPart::Value()
{
    if (m_place)
    {
        m_value = *m_place;
        m_place = nullptr;
    }
    return m_value;
}

void JSONPart::Clear()
{
    m_place = nullptr;
    m_value.clear();
}

void JSONPart::MoveTo(nlohmann::json &place)
{
    nlohmann::json empty(Value().type());
    place = std::exchange(m_value, std::move(empty));
    m_place = &place;
}

void JSONPart::AppendTo(nlohmann::json &array)
{
    Value();
    array.push_back(nullptr);
    MoveTo(array.back());
}

ModuleJSONWriter::ModuleJSONWriter(const JSONWriterNames &names) : m_debugHandle(names.component), m_names(names)
{
    const WriterOperation traced(m_debugHandle, m_names.constructor);
}

ModuleJSONWriter::~ModuleJSONWriter()
{
    const WriterOperation traced(m_debugHandle, m_names.destructor);
}

Status ModuleJSONWriter::Initialize(std::string moduleName, std::string description)
{
    const auto start = [&]
    {
        StartModule();
        m_subModCount = m_tabCount = m_groupCount = 0;
        m_subModMode = false;
        m_plainRows = moduleName == kPlainRowsModule;
        m_module["ModuleName"] = std::move(moduleName);
        if (!description.empty())
            m_module["Description"] = description;
        m_description = std::move(description);
    };
    return WriterOperation(m_debugHandle, m_names.initialize).Run(start);
}

Status ModuleJSONWriter::AddSubMod(std::string subModName)
{
    const auto add = [&]
    {
        m_tabCount = m_groupCount = 0;
        m_subModMode = true;
        if (m_subModCount != 0)
            CompleteSubModule();
        StartSubModule();
        m_subModule.Clear();
        m_subModule.Value()["SubModuleName"] = std::move(subModName);
        ++m_subModCount;
    };
    return WriterOperation(m_debugHandle, m_names.addSubMod).Run(add);
}

Status ModuleJSONWriter::AddTab(std::string tabName, std::string header)
{
    const auto add = [&]
    {
        m_groupCount = 0;
        if (m_tabCount != 0)
            CompleteTab();
        m_headers = SplitByChar(header, ',');
        StartTab(std::move(tabName));
        ++m_tabCount;
    };
    return WriterOperation(m_debugHandle, m_names.addTab).Run(add);
}

Status ModuleJSONWriter::AddGroup(std::string groupName)
{
    const auto add = [&]
    {
        if (m_groupCount != 0)
            CompleteGroup();
        m_group.Clear();
        m_items.Clear();
        m_group.Value()["GroupName"] = std::move(groupName);
        ++m_groupCount;
    };
    return WriterOperation(m_debugHandle, m_names.addGroup).RunWithoutExitLine(add);
}

Status ModuleJSONWriter::AddRow(std::string rowContent)
{
    return WriterOperation(m_debugHandle, m_names.addRow)
        .Run([&] { m_items.Value().push_back(MakeItem(WithoutLast(WithoutFirst(rowContent)))); });
}

Status ModuleJSONWriter::CopyDataToBuffer(std::string &buffer)
{
    const auto copy = [&]
    {
        if (m_description.empty() && m_subModMode)
            CompleteSubModule();
        else if (m_description.empty())
            CompleteTab();
        try
        {
            buffer = m_module.dump(kOneLine, ' ', false, json::error_handler_t::strict);
        }
        catch (const json::exception &)
        {
            // Not UTF-8: the caller keeps what it has.
        }
    };
    return WriterOperation(m_debugHandle, m_names.copyDataToBuffer).Run(copy);
}

Status ModuleJSONWriter::UnInitialize()
{
    return WriterOperation(m_debugHandle, m_names.unInitialize).Run([this] { EndModule(); });
}

void ModuleJSONWriter::CompleteGroup()
{
    json &groups = GroupParent()["groups"];
    m_group.AppendTo(groups);
    m_items.MoveTo(groups.back()["items"]);
}

void ModuleJSONWriter::CompleteSubModule()
{
    CompleteTab();
    m_subModule.AppendTo(m_module["submodules"]);
}
