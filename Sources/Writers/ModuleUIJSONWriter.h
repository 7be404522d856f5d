#pragma once

#include "ModuleJSONWriter.h"

/// Writes the JSON document of the host's user interface: the module (or each sub-module) with its tabs, each with its
/// name, its column titles and its groups, each group with its rows, each row an array of cells.
///
/// A row of a module named "ACPI" is an object instead, with the whole row under the first column title; without
/// columns the title is empty.
class ModuleUIJSONWriter : public ModuleJSONWriter
{
public:
    ModuleUIJSONWriter();

private:
    void StartModule() override {} // an earlier document stays
    void StartSubModule() override {}
    void StartTab(std::string_view tabName) override;
    void CompleteTab() override;
    JSONText &GroupList() override { return m_tabList; }
    void AppendItem(JSONText &items, std::string_view row) override;
    void EndModule() override {}

    JSONText m_tabHeader;
    JSONText m_tabName;
    JSONText m_tabList;
};
