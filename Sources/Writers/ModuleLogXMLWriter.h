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

private:
    Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) override;
    Status DoAddSubMod(FunctionTrace &trace, std::string subModName) override;
    Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) override;
    Status DoAddGroup(FunctionTrace &trace, std::string groupName) override;
    Status DoAddRow(FunctionTrace &trace, std::string rowContent) override;
    void ForgetNodes() override;
    xmlNodePtr AddItem(std::string row);

    /// The parent of groups: the last sub-module, or the root.
    xmlNodePtr m_pSubModNode = nullptr;
    xmlNodePtr m_pGroupNode = nullptr;
    std::string m_tabName;
    std::vector<std::string> m_headers;
};
