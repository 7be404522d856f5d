#pragma once

#include "ModuleDataWriter.h"

#include <functional>
#include <gtest/gtest.h>

/// One call of a writer's operation, the status that it must return, and the line that it must trace where it fails.
struct WriterCall
{
    const char *operation;
    std::function<Status(ModuleDataWriter &, std::string &)> make;
    Status status = StatusCode::Success;
    std::string line = {};

    WriterCall Fails(Status expectedStatus, std::string expectedLine) const
    {
        return {operation, make, expectedStatus, std::move(expectedLine)};
    }
};

template <typename... Texts>
WriterCall MakeCall(const char *name, Status (ModuleDataWriter::*operation)(Texts...), Texts... texts)
{
    return {name, [=](ModuleDataWriter &writer, std::string &) { return (writer.*operation)(texts...); }};
}

inline WriterCall Init(std::string name, std::string description = "")
{
    return MakeCall("Initialize", &ModuleDataWriter::Initialize, std::move(name), std::move(description));
}
inline WriterCall SubMod(std::string name)
{
    return MakeCall("AddSubMod", &ModuleDataWriter::AddSubMod, std::move(name));
}
inline WriterCall Tab(std::string name, std::string header)
{
    return MakeCall("AddTab", &ModuleDataWriter::AddTab, std::move(name), std::move(header));
}
inline WriterCall Group(std::string name)
{
    return MakeCall("AddGroup", &ModuleDataWriter::AddGroup, std::move(name));
}
inline WriterCall Row(std::string content)
{
    return MakeCall("AddRow", &ModuleDataWriter::AddRow, std::move(content));
}
inline WriterCall UnInit()
{
    return MakeCall("UnInitialize", &ModuleDataWriter::UnInitialize);
}
inline WriterCall Copy()
{
    return {"CopyDataToBuffer",
            [](ModuleDataWriter &writer, std::string &buffer) { return writer.CopyDataToBuffer(buffer); }};
}

/// By output kind.
constexpr const char *kWriterClasses[] = {"ModuleUIXMLWriter",      "ModuleUIXMLWriter",      "ModuleLogXMLWriter",
                                          "ModuleLogXMLWriter",     "ModuleLogHTMLWriter",    "ModuleLogHTMLWriter",
                                          "ModuleLogHTMLXMLWriter", "ModuleLogHTMLXMLWriter", "ModuleLogJSONWriter",
                                          "ModuleUIJSONWriter"};

/// Makes the calls and a final copy and returns the text, which holds "before" at the start. Checks every call's status
/// and all its trace lines.
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
