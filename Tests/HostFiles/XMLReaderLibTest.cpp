#include "XMLReaderLib.h"

#include "ModuleSupport.h"

#include <gtest/gtest.h>

namespace
{

using namespace TestSupport;
using Texts = std::vector<std::string>;

std::string List(const std::string &modules)
{
    return R"({"Tarnwell": {"CapabilityList": )" + modules + "}}";
}

std::string Options(const std::string &elements)
{
    return List(R"({"BIOS Options": )" + elements + "}");
}

TEST(XMLReaderLib, ReadsNamesInLowerCaseAndDescriptions)
{
    const TemporaryDirectory directory;
    ASSERT_EQ(XMLReaderLib::InitializeXMLPath(directory.Path("")), StatusCode::Success);
    EXPECT_EQ(XMLReaderLib::InitializeXMLPath(""), StatusCode::Failed);
    const struct
    {
        std::string file;
        Texts names;
        Texts descriptions;
    } cases[] = {
        {Options(R"([{"Name": "MiXed \u00C4", "Description": "As Is", "Other": 1}, {"Name": "b", "Description": ""}])"),
         {"mixed \xC3\x84", "b"},
         {"As Is", ""}},
        {Options(R"({"2": {"Name": "Second", "Description": "s"}, "1": {"Name": "First", "Description": "f"}})"),
         {"first", "second"},
         {"f", "s"}},
        {R"({"Tarnwell": 1, "Tarnwell": {"CapabilityList": {"BIOS Options": 2, "BIOS Options": {
            "b": 3, "a": {"Name": "x", "Name": "A", "Description": "a"}, "b": {"Name": "B", "Description": "b"}}}}})",
         {"a", "b"}, // the last of members with one name
         {"a", "b"}},
        {Options("[]"), {}, {}},
    };
    for (const auto &row : cases)
    {
        WriteFile(directory.Path("CapsList.json"), row.file);
        Texts names = {"old"};
        Texts descriptions = {"old"};
        EXPECT_EQ(XMLReaderLib::GetCapabilityList("BIOS Options", &names, &descriptions), StatusCode::Success);
        EXPECT_EQ(names, row.names);
        EXPECT_EQ(descriptions, row.descriptions);
    }
}

TEST(XMLReaderLib, TellsWhyThereAreNoCapabilities)
{
    const TemporaryDirectory directory;
    XMLReaderLib::InitializeXMLPath(directory.Path(""));
    const std::string good = R"({"Name": "a", "Description": "b"})";
    const std::pair<std::string, Status> cases[] = {
        {"", StatusCode::Failed}, // also for a file that is not there
        {Options("[" + good + ",]"), StatusCode::Failed},
        {Options("[" + good + "]") + " // comment", StatusCode::Failed},
        {"{\"Tarnwell\": \"\xFF\"}", StatusCode::Failed},
        {"[]", StatusCode::Failed},
        {R"({"Tarnwell": []})", StatusCode::Failed},
        {List("\"text\""), StatusCode::Failed},
        {Options("3"), StatusCode::Failed},
        {Options("[" + good + ", 3]"), StatusCode::Failed},
        {Options("[" + good + R"(, {"Description": "b"}])"), StatusCode::Failed},
        {Options(R"([{"Name": 1, "Description": "b"}])"), StatusCode::Failed},
        {"{}", StatusCode::NotFound},
        {List("{}"), StatusCode::NotFound},
        {List(R"({"bios options": [], "Other": []})"), StatusCode::NotFound},
    };
    for (const auto &[file, status] : cases)
    {
        if (!file.empty())
            WriteFile(directory.Path("CapsList.json"), file);
        Texts names = {"old"};
        Texts descriptions = {"old"};
        EXPECT_EQ(XMLReaderLib::GetCapabilityList("BIOS Options", &names, &descriptions), status) << file;
        EXPECT_TRUE(names.empty() && descriptions.empty()) << file;
    }
}

TEST(XMLReaderLib, ClosesItsHandlesOnEveryWayOut)
{
    const TraceLog log("XMLReaderLib");
    Texts lists = {"old"};
    EXPECT_EQ(XMLReaderLib::GetCapabilityList(nullptr, &lists, &lists), StatusCode::NotFound);
    const Texts expected = {" -->  Fn:XMLReaderLib::Initialize \n",
                            " <--  Fn:XMLReaderLib::Initialize returning status 1\n",
                            " -->  Fn:XMLReaderLib::GetCapabilityList \n",
                            " **ERROR**  <--  Fn:XMLReaderLib::GetCapabilityList NULL pointer(s)\n",
                            " -->  Fn:XMLReaderLib::UnInitialize \n",
                            " <--  Fn:XMLReaderLib::UnInitialize returning status = 1\n"};
    EXPECT_EQ(TraceLog::Take(), expected);
    EXPECT_EQ(XMLReaderLib::GetCapabilityList("BIOS Options", nullptr, &lists), StatusCode::NotFound);
    EXPECT_EQ(lists, Texts{"old"});
    DebugHandle_t *handle = nullptr;
    InitDebugHandle("XMLReaderLib", &handle);
    EXPECT_EQ(handle->refCount, 2);
    UnInitDebugHandle(handle);
    EXPECT_EQ(XMLReaderLib::ReadWholeFile("no such file", nullptr), StatusCode::Failed);
}

} // namespace
