#pragma once

#include "TracedWriter.h"

#include <memory>

/// Writes the HTML log and the XML log of one report into one text, each between a begin and an end marker, with
/// nothing in between. Every operation checks its own arguments and then goes to both writers, whose failures are
/// traced by them and change nothing here. Unlike them, it refuses a group without a name.
class ModuleLogHTMLXMLWriter : public TracedWriter
{
public:
    ModuleLogHTMLXMLWriter();
    ~ModuleLogHTMLXMLWriter() override;

private:
    Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) override;
    Status DoAddSubMod(FunctionTrace &trace, std::string subModName) override;
    Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) override;
    Status DoAddGroup(FunctionTrace &trace, std::string groupName) override;
    Status DoAddRow(FunctionTrace &trace, std::string rowContent) override;

    /// Always Success but for NoMemory. The section of a writer without a document repeats what the text held before.
    Status DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer) override;

    /// Always Success.
    Status DoUnInitialize(FunctionTrace &trace) override;

    /// Calls the operation of both writers, the HTML writer's first, and ends as Success.
    template <typename... Texts>
    Status Forward(FunctionTrace &trace, Status (ModuleDataWriter::*operation)(Texts...), Texts &...texts);

    std::unique_ptr<ModuleDataWriter> m_pHTMLWriter;
    std::unique_ptr<ModuleDataWriter> m_pXMLWriter;
};
