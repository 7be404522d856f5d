#pragma once

#include "TracedWriter.h"

#include <initializer_list>

/// Writes an HTML fragment: a heading for the module and each sub-module, one bordered table per tab, with a title row
/// per group. Nothing is escaped or re-encoded: names, titles and cells go into the text exactly as given.
///
/// All columns of a tab have the same width, in percent. A tab with one column, or with more than ten, has one wide
/// column; its rows stand there whole, quotation marks included. The description is not part of the text.
class ModuleLogHTMLWriter : public TracedWriter
{
public:
    ModuleLogHTMLWriter();
    ~ModuleLogHTMLWriter() override;

private:
    Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) override;
    Status DoAddSubMod(FunctionTrace &trace, std::string subModName) override;
    Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) override;
    Status DoAddGroup(FunctionTrace &trace, std::string groupName) override;
    Status DoAddRow(FunctionTrace &trace, std::string rowContent) override;
    Status DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer) override;
    Status DoUnInitialize(FunctionTrace &trace) override;

    void StartTable(std::string_view tabName, std::string_view header);
    void AppendRow(std::string_view row);
    void Append(std::initializer_list<std::string_view> pieces);
    void AppendCells(const std::vector<std::string_view> &cells, std::uint32_t width, std::string_view cellStartEnd);

    /// Empty until the writer is initialised.
    std::string m_pBuff;
    std::uint32_t m_subModCount = 0;
    std::uint32_t m_tabCount = 0;
    std::uint32_t m_columnWidth = 100;
};
