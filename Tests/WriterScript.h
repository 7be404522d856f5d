#pragma once

#include "ModuleDataWriter.h"

#include <functional>
#include <gtest/gtest.h>

/// One call of a writer's operation, the status that it must return, and the line that it must trace where it fails.
struct WriterCall
{
    std::function<Status(ModuleDataWriter &, std::string &)> make;
    Status status = StatusCode::Success;
    std::string line = {};

    WriterCall Fails(Status expectedStatus, std::string expectedLine) const
    {
        return {make, expectedStatus, std::move(expectedLine)};
    }
};

template <typename... Texts>
WriterCall MakeCall(Status (ModuleDataWriter::*operation)(Texts...), Texts... texts)
{
    return {[=](ModuleDataWriter &writer, std::string &) { return (writer.*operation)(texts...); }};
}

inline WriterCall Init(std::string name, std::string description = "")
{
    return MakeCall(&ModuleDataWriter::Initialize, std::move(name), std::move(description));
}
inline WriterCall SubMod(std::string name)
{
    return MakeCall(&ModuleDataWriter::AddSubMod, std::move(name));
}
inline WriterCall Tab(std::string name, std::string header)
{
    return MakeCall(&ModuleDataWriter::AddTab, std::move(name), std::move(header));
}
inline WriterCall Group(std::string name)
{
    return MakeCall(&ModuleDataWriter::AddGroup, std::move(name));
}
inline WriterCall Row(std::string content)
{
    return MakeCall(&ModuleDataWriter::AddRow, std::move(content));
}
inline WriterCall UnInit()
{
    return MakeCall(&ModuleDataWriter::UnInitialize);
}
inline WriterCall Copy()
{
    return {[](ModuleDataWriter &writer, std::string &buffer) { return writer.CopyDataToBuffer(buffer); }};
}

/// The trace names of the writers, by output kind.
constexpr const char *kWriterComponents[] = {"ModuleUIXMLWriter",      "ModuleUIXMLWriter",      "ModuleLogXMLWriter",
                                             "ModuleLogXMLWriter",     "ModuleLogHTMLWriter",    "ModuleLogHTMLWriter",
                                             "ModuleLogHTMLXMLWriter", "ModuleLogHTMLXMLWriter", "ModuleLogJSONWriter",
                                             "ModuleUIJSONWriter"};

/// Makes the calls, with a final copy, and returns the text; it holds "before" at the start.
std::string RunWriter(OutputKind kind, const std::vector<WriterCall> &calls);

struct WriterCase
{
    const char *what;
    std::vector<WriterCall> calls;
    std::string document;
};

/// Runs every case; each document is compared whole.
template <std::size_t Size>
void CheckDocuments(OutputKind kind, const WriterCase (&cases)[Size])
{
    for (const WriterCase &tested : cases)
        EXPECT_EQ(RunWriter(kind, tested.calls), tested.document) << tested.what;
}
