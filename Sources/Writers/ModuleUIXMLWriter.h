#pragma once

#include "ModuleXMLWriter.h"

/// Writes the document of the host's user interface: a tree of items, each with tab pages, each page a grid of groups
/// and rows. A row is stored whole; the reader of the document splits it.
class ModuleUIXMLWriter : public ModuleXMLWriter
{
public:
    ModuleUIXMLWriter();
    ~ModuleUIXMLWriter() override;

private:
    Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) override;
    Status DoAddSubMod(FunctionTrace &trace, std::string subModName) override;
    Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) override;
    Status DoAddGroup(FunctionTrace &trace, std::string groupName) override;
    Status DoAddRow(FunctionTrace &trace, std::string rowContent) override;
    void ForgetNodes() override;

    xmlNodePtr m_pTreeListNode = nullptr;
    xmlNodePtr m_pItemNode = nullptr;
    xmlNodePtr m_pTabControlNode = nullptr;
    xmlNodePtr m_pTabNode = nullptr;
    xmlNodePtr m_pGridNode = nullptr;
    xmlNodePtr m_pGroupNode = nullptr;
    std::uint32_t m_subModCount = 0;
    std::uint32_t m_tabCount = 0;
};
