#pragma once

#include "ModuleJSONWriter.h"

/// Writes a JSON log: the module (or each sub-module) with its groups, each group with its items, one per row: an
/// object with the cells under the names of the columns. A tab is no part of the document; it sets the column names.
///
/// The rows of a module named "ACPI" and of a group named "PCI Dump" are plain texts. Cells beyond the column names are
/// left out.
class ModuleLogJSONWriter : public ModuleJSONWriter
{
public:
    ModuleLogJSONWriter();

private:
    void StartModule() override;
    void StartSubModule() override;
    void StartTab(std::string_view tabName) override;
    void CompleteTab() override { CompleteGroup(); }
    JSONText &GroupList() override { return PartList(); }
    void AppendItem(JSONText &items, std::string_view row) override;
    void EndModule() override;
    void ForgetGroup();

    /// The positions in m_headers in the order of the names; of equal names, in their own.
    std::vector<std::size_t> m_columnsByName;
    /// m_headers as an item shows them.
    std::vector<JSONText> m_keys;
};
