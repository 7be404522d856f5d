#include "ModuleJSONWriter.h"

#include <utility>

namespace
{

constexpr std::string_view kPlainRowsModule = "ACPI";
constexpr std::string_view kPlainRowsGroup = "PCI Dump";
constexpr std::string_view kSubModuleKey = "submodules";
constexpr std::string_view kArrayEnd = "]";

JSONText StringText(std::string_view text)
{
    JSONText json;
    json.AppendString(text);
    return json;
}

} // namespace

ModuleJSONWriter::ModuleJSONWriter(const char *className, std::string_view listKey)
    : TracedWriter(className), m_listKey(listKey)
{
    const LifeTrace traced = TraceConstruction();
}

ModuleJSONWriter::~ModuleJSONWriter()
{
    const LifeTrace traced = TraceDestruction();
}

Status ModuleJSONWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description)
{
    JSONText name = StringText(moduleName);
    JSONText text = StringText(description);
    StartModule();
    m_subModCount = m_tabCount = m_groupCount = 0;
    m_subModMode = false;
    m_plainRows = moduleName == kPlainRowsModule;
    m_moduleName = std::move(name);
    if (!description.empty())
        m_moduleDescription = std::move(text);
    m_description = std::move(description);
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    JSONText name = StringText(subModName);
    m_tabCount = m_groupCount = 0;
    m_subModMode = true;
    if (m_subModCount != 0)
        CompleteSubModule();
    StartSubModule();
    m_subModList.Clear();
    m_subModName = std::move(name);
    ++m_subModCount;
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    m_groupCount = 0;
    if (m_tabCount != 0)
        CompleteTab();
    m_headers = SplitByChar(header, ',');
    StartTab(tabName);
    ++m_tabCount;
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    JSONText name = StringText(groupName);
    if (m_groupCount != 0)
        CompleteGroup();
    m_items.ClearArray();
    m_groupName = std::move(name);
    m_isPlainGroup = groupName == kPlainRowsGroup;
    ++m_groupCount;
    // No exit line: those who read the traces of these two writers know a group by its entry line alone.
    return trace.LeaveUntraced(StatusCode::Success);
}

Status ModuleJSONWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    m_items.AddElement([&](JSONText &items) { AppendItem(items, WithoutLast(WithoutFirst(rowContent))); });
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer)
{
    if (m_description.empty() && m_subModMode)
        CompleteSubModule();
    else if (m_description.empty())
        CompleteTab();
    JSONText document = Document();
    m_isRefused = !document.IsUtf8();
    if (!m_isRefused)
        buffer = document.Take();
    return trace.Done(StatusCode::Success);
}

Status ModuleJSONWriter::DoUnInitialize(FunctionTrace &trace)
{
    EndModule();
    return trace.Done(StatusCode::Success);
}

void ModuleJSONWriter::CompleteGroup()
{
    JSONText null;
    null.Append("null");
    const JSONText::Member items = {"items", m_items.IsEmpty() ? null : m_items, m_items.IsEmpty() ? "" : kArrayEnd};
    GroupList().AddElement([&](JSONText &groups) { groups.AppendObject({{"GroupName", m_groupName}, items}); });
}

void ModuleJSONWriter::CompleteSubModule()
{
    CompleteTab();
    m_subModuleList.AddElement(
        [this](JSONText &subModules) {
            subModules.AppendObject({{"SubModuleName", m_subModName}, {m_listKey, m_subModList, kArrayEnd}});
        });
}

JSONText ModuleJSONWriter::Document() const
{
    const JSONText::Member list = {m_listKey, m_moduleList, kArrayEnd};
    const JSONText::Member subModules = {kSubModuleKey, m_subModuleList, kArrayEnd};
    const bool listIsFirst = m_listKey < kSubModuleKey;
    JSONText document;
    document.AppendObject({{"Description", m_moduleDescription},
                           {"ModuleName", m_moduleName},
                           listIsFirst ? list : subModules,
                           listIsFirst ? subModules : list});
    return document;
}
