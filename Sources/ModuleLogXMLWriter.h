#pragma once

#include "ModuleXMLWriter.h"

/// Writes a flat XML log: groups of items, one per row, whose attributes are named after the columns and hold the
/// cells. A tab is no element; it sets the column names and the name of groups without one.
///
/// Column names lose their blanks; more than eight become the single name "Value". A row with another number of cells
/// than there are names is stored whole, as text. The description is not part of the document.
class ModuleLogXMLWriter : public ModuleXMLWriter
{
public:
    ModuleLogXMLWriter();
    ~ModuleLogXMLWriter() override;

    Status Initialize(std::string moduleName, std::string description) override;
    Status AddSubMod(std::string subModName) override;
    Status AddTab(std::string tabName, std::string header) override;
    Status AddGroup(std::string groupName) override;
    Status AddRow(std::string rowContent) override;
    Status CopyDataToBuffer(std::string &buffer) override;
    Status UnInitialize() override;

private:
    void ForgetNodes() override;
    xmlNodePtr AddItem(std::string row);

    /// The parent of groups: the last sub-module, or the root.
    xmlNodePtr m_pSubModNode = nullptr;
    xmlNodePtr m_pGroupNode = nullptr;
    std::string m_tabName;
    std::vector<std::string> m_headers;
    WriterHandle m_debugHandle;
};
