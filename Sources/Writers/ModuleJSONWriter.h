#pragma once

#include "TracedWriter.h"

#include <nlohmann/json.hpp>

/// A part of a JSON document while it is being filled. Completing a part moves it into the document. Whoever looks at
/// it again afterwards gets a copy of what stands there; only unusual sequences of calls do.
class JSONPart
{
public:
    /// The part, for reading and filling.
    nlohmann::json &Value();

    /// Empties the part and keeps its type: null stays null.
    void Clear();

    /// Moves the part to `place`, which must stay where it is until Value or Clear is called.
    void MoveTo(nlohmann::json &place);

    /// Moves the part to the end of `array` (null counts as an empty one). Nothing else may be appended there until
    /// Value or Clear is called.
    void AppendTo(nlohmann::json &array);

private:
    nlohmann::json m_value;
    /// Where the part went, if it has been completed; m_value is then empty.
    const nlohmann::json *m_place = nullptr;
};

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

protected:
    using json = nlohmann::json;

    explicit ModuleJSONWriter(const char *className);

    // What each writer does in its own way.

    /// Prepares for a new document.
    virtual void StartModule() = 0;
    /// A sub-module starts; what was current has been completed where that is due.
    virtual void StartSubModule() = 0;
    /// A tab with the columns m_headers starts.
    virtual void StartTab(std::string tabName) = 0;
    /// Completes what is current below the sub-module.
    virtual void CompleteTab() = 0;
    /// What holds the "groups".
    virtual json &GroupParent() = 0;
    /// Makes the item of a row, which has lost its outer quotation marks.
    virtual json MakeItem(std::string_view row) = 0;
    /// Lets go of the document.
    virtual void EndModule() = 0;

    /// The current sub-module, or the module before the first.
    json &SubModuleOrModule() { return m_subModMode ? m_subModule.Value() : m_module; }
    void CompleteGroup();

    json m_module;
    JSONPart m_subModule;
    JSONPart m_group;
    JSONPart m_items;
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
};
