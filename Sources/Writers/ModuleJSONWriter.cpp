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

ModuleJSONWriter::ModuleJSONWriter(const char *className) : TracedWriter(className)
{
    const LifeTrace traced = TraceConstruction();
}

ModuleJSONWriter::~ModuleJSONWriter()
{
    const LifeTrace traced = TraceDestruction();
}

Status ModuleJSONWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description)
{
    StartModule();
    m_subModCount = m_tabCount = m_groupCount = 0;
    m_subModMode = false;
    m_plainRows = moduleName == kPlainRowsModule;
    m_module["ModuleName"] = std::move(moduleName);
    if (!description.empty())
        m_module["Description"] = description;
    m_description = std::move(description);
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    m_tabCount = m_groupCount = 0;
    m_subModMode = true;
    if (m_subModCount != 0)
        CompleteSubModule();
    StartSubModule();
    m_subModule.Clear();
    m_subModule.Value()["SubModuleName"] = std::move(subModName);
    ++m_subModCount;
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    m_groupCount = 0;
    if (m_tabCount != 0)
        CompleteTab();
    m_headers = SplitByChar(header, ',');
    StartTab(std::move(tabName));
    ++m_tabCount;
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    if (m_groupCount != 0)
        CompleteGroup();
    m_group.Clear();
    m_items.Clear();
    m_group.Value()["GroupName"] = std::move(groupName);
    ++m_groupCount;
    // No exit line: those who read the traces of these two writers know a group by its entry line alone.
    return trace.LeaveUntraced(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    m_items.Value().push_back(MakeItem(WithoutLast(WithoutFirst(rowContent))));
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer)
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
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoUnInitialize(FunctionTrace &trace)
{
    EndModule();
    return trace.Done(StatusCode::Success);
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
