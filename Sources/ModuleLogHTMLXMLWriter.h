#pragma once

#include "ModuleDataWriter.h"
#include "WriterOperation.h"

#include <memory>

/// Writes the HTML log and the XML log of one report into one text, each between a begin and an end marker, with
/// nothing in between. Every operation checks its own arguments and then goes to both writers, whose failures are
/// traced by them and change nothing here. Unlike them, it refuses a group without a name.
class ModuleLogHTMLXMLWriter : public ModuleDataWriter
{
public:
    ModuleLogHTMLXMLWriter();
    ~ModuleLogHTMLXMLWriter() override;

    Status Initialize(std::string moduleName, std::string description) override;
    Status AddSubMod(std::string subModName) override;
    Status AddTab(std::string tabName, std::string header) override;
    Status AddGroup(std::string groupName) override;
    Status AddRow(std::string rowContent) override;

    /// Always Success but for NoMemory. The section of a writer without a document repeats what the text held before.
    Status CopyDataToBuffer(std::string &buffer) override;

    /// Always Success.
    Status UnInitialize() override;

private:
    /// Calls the operation of both writers, the HTML writer's first.
    template <typename... Texts>
    void Forward(Status (ModuleDataWriter::*operation)(Texts...), Texts &...texts);

    std::unique_ptr<ModuleDataWriter> m_pHTMLWriter;
    std::unique_ptr<ModuleDataWriter> m_pXMLWriter;
    WriterHandle m_debugHandle;
};
