#pragma once

#include "JSONText.h"
#include "TracedWriter.h"

/// What the writers of JSON documents share: a part enters the document when it is completed, that is, when the next
/// one of its kind or of a kind above it is started, and at the end. A document with a description holds only what was
/// completed before the end. CopyDataToBuffer completes the current parts anew each time, and so repeats them.
///
/// No argument is checked. Every operation returns Success, or NoMemory. Texts that are not UTF-8 leave the buffer of
/// CopyDataToBuffer as it was.
class ModuleJSONWriter : public TracedWriter
{
public:
    ~ModuleJSONWriter() override;

    bool IsRefusedAsNotUtf8() const final { return m_isRefused; }

protected:
    /// `listKey` is under which key a module or a sub-module holds its parts.
    ModuleJSONWriter(const char *className, std::string_view listKey);

    // What each writer does in its own way.

    /// Prepares for a new document.
    virtual void StartModule() = 0;
    /// A sub-module starts; what was current has been completed where that is due.
    virtual void StartSubModule() = 0;
    /// A tab with the columns m_headers starts.
    virtual void StartTab(std::string_view tabName) = 0;
    /// Completes what is current below the sub-module.
    virtual void CompleteTab() = 0;
    /// The list that completed groups go to.
    virtual JSONText &GroupList() = 0;
    /// Appends the item of a row, which has lost its outer quotation marks.
    virtual void AppendItem(JSONText &items, std::string_view row) = 0;
    /// Lets go of the document.
    virtual void EndModule() = 0;

    /// The parts of the current sub-module, or of the module before the first.
    JSONText &PartList() { return m_subModMode ? m_subModList : m_moduleList; }
    void CompleteGroup();

    // The values of the document's members; those that end in "List" and m_items are arrays without their end.
    JSONText m_moduleName;
    JSONText m_moduleDescription;
    JSONText m_moduleList;
    JSONText m_subModuleList;
    JSONText m_subModName;
    JSONText m_subModList;
    JSONText m_groupName;
    JSONText m_items;

    /// Whether the rows of the current group are not split in a log.
    bool m_isPlainGroup = false;
    std::string m_description;
    std::uint32_t m_tabCount = 0;
    std::uint32_t m_groupCount = 0;
    std::uint32_t m_subModCount = 0;
    std::vector<std::string> m_headers;
    /// The rows of this module are not split.
    bool m_plainRows = false;
    bool m_subModMode = false;

private:
    Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) final;
    Status DoAddSubMod(FunctionTrace &trace, std::string subModName) final;
    Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) final;
    Status DoAddGroup(FunctionTrace &trace, std::string groupName) final;
    Status DoAddRow(FunctionTrace &trace, std::string rowContent) final;
    Status DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer) final;
    Status DoUnInitialize(FunctionTrace &trace) final;

    void CompleteSubModule();
    JSONText Document() const;

    std::string_view m_listKey;
    bool m_isRefused = false;
};
