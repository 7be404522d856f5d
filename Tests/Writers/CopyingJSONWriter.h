#pragma once

#include "ReportFormat.h"

#include <nlohmann/json.hpp>

/// The rules of the two JSON writers by the letter, with a copy wherever a part of the document is completed: what the
/// writers must agree with, and what their moves are measured against. Without traces and checks.
class CopyingJSONWriter : public ModuleDataWriter
{
public:
    explicit CopyingJSONWriter(OutputKind kind) : m_isUi(kind == OutputKind::UiJson) {}

    Status Initialize(std::string moduleName, std::string description) override
    {
        if (!m_isUi)
            UnInitialize();
        m_tabs = m_groups = m_subModules = 0;
        m_subModMode = false;
        m_plainRows = moduleName == "ACPI";
        m_module["ModuleName"] = moduleName;
        if (!description.empty())
            m_module["Description"] = description;
        m_description = description;
        return StatusCode::Success;
    }

    Status AddSubMod(std::string subModName) override
    {
        m_tabs = m_groups = 0;
        m_subModMode = true;
        if (m_subModules++ != 0)
            CompleteSubModule();
        if (!m_isUi)
        {
            m_items.clear();
            m_group.clear();
        }
        m_subModule.clear();
        m_subModule["SubModuleName"] = subModName;
        return StatusCode::Success;
    }

    Status AddTab(std::string tabName, std::string header) override
    {
        m_groups = 0;
        if (m_tabs++ != 0)
            CompleteTab();
        m_headers = SplitByChar(header, ',');
        (m_isUi ? m_tab : m_group).clear();
        if (!m_isUi)
            return StatusCode::Success;
        m_tab["TabName"] = tabName;
        for (const std::string &title : m_headers)
            m_tab["TabHeader"].push_back(title);
        return StatusCode::Success;
    }

    Status AddGroup(std::string groupName) override
    {
        if (m_groups++ != 0)
            CompleteGroup();
        m_group.clear();
        m_items.clear();
        m_group["GroupName"] = groupName;
        return StatusCode::Success;
    }

    Status AddRow(std::string rowContent) override
    {
        const std::string row = rowContent.size() < 2 ? "" : rowContent.substr(1, rowContent.size() - 2);
        const json item = m_isUi ? UiItem(row) : LogItem(row);
        m_items.push_back(item);
        return StatusCode::Success;
    }

    Status CopyDataToBuffer(std::string &buffer) override
    {
        if (m_description.empty())
            m_subModMode ? CompleteSubModule() : CompleteTab();
        try
        {
            buffer = m_module.dump();
            m_isRefused = false;
        }
        catch (const json::type_error &)
        {
            m_isRefused = true;
        }
        return StatusCode::Success;
    }

    bool IsRefusedAsNotUtf8() const override { return m_isRefused; }

    Status UnInitialize() override
    {
        if (m_isUi)
            return StatusCode::Success;
        for (json *value : {&m_module, &m_subModule, &m_group, &m_items})
            value->clear();
        m_headers.clear();
        m_tabs = m_groups = m_subModules = 0;
        return StatusCode::Success;
    }

private:
    using json = nlohmann::json;

    json LogItem(const std::string &row)
    {
        if (m_plainRows || m_group["GroupName"] == "PCI Dump")
            return row;
        json item = json::object();
        const std::vector<std::string> cells = SplitString(row, "\", \"");
        for (std::size_t column = 0; column < cells.size() && column < m_headers.size(); ++column)
            item[m_headers[column]] = cells[column];
        return item;
    }

    json UiItem(const std::string &row) const
    {
        json item;
        if (m_plainRows)
            item[m_headers.empty() ? "" : m_headers[0]] = row;
        else
            item = SplitString(row, "\", \"");
        return item;
    }

    json &Parent() { return m_subModMode ? m_subModule : m_module; }

    void CompleteGroup()
    {
        m_group["items"] = m_items;
        (m_isUi ? m_tab : Parent())["groups"].push_back(m_group);
    }
    void CompleteTab()
    {
        CompleteGroup();
        if (m_isUi)
            Parent()["tabs"].push_back(m_tab);
    }
    void CompleteSubModule()
    {
        CompleteTab();
        m_module["submodules"].push_back(m_subModule);
    }

    bool m_isUi;
    json m_module, m_subModule, m_tab, m_group, m_items;
    std::string m_description;
    std::vector<std::string> m_headers;
    unsigned m_tabs = 0, m_groups = 0, m_subModules = 0;
    bool m_plainRows = false, m_subModMode = false, m_isRefused = false;
};
