#include "DebugTrace.h"
#include "WriterScript.h"

#include <typeindex>

namespace
{

/// The lines of the failures that the writers of one kind know; no line where the operation accepts the call.
struct FailureLines
{
    OutputKind kind;
    const char *noModuleName;
    const char *noSubModName;
    const char *noTabOrHeader;
    const char *noGroupName;
    const char *noRow;
    const char *notInitialized;
    const char *rowNotInitialized;
};

constexpr FailureLines kFailureLines[] = {
    {OutputKind::UiXml, "moduleName is empty\n", "subModName is empty\n", "empty parameter(s)\n", "",
     "rowContent is empty\n", "NULL Pointer:m_pDoc\n", "NULL Pointer(s)\n"},
    {OutputKind::LogXml, "moduleName is empty\n", "subModName is empty\n", "NULL argument(s)\n", "",
     "rowContent is empty\n", "NULL Pointer:m_pDoc\n", "NULL Pointer(s)\n"},
    {OutputKind::LogHtml, "empty argument\n", "subModName is empty\n", "NULL Pointer(s)\n", "", "rowContent is empty\n",
     "m_pBuff is empty\n", "m_pBuff is empty\n"},
    {OutputKind::LogHtmlXml, "moduleName is empty\n", "subModName is empty\n", "NULL argument(s)\n",
     "NULL argument(s)\n", "rowContent is empty\n", "", ""},
    {OutputKind::LogJson, "", "", "", "", "", "", ""},
    {OutputKind::UiJson, "", "", "", "", "", "", ""},
};

WriterCall Expect(const WriterCall &call, Status failure, const std::string &line)
{
    return line.empty() ? call : call.Fails(failure, line);
}

/// Every operation that needs a document.
std::vector<WriterCall> Uninitialized(const FailureLines &lines)
{
    const auto missing = [](const WriterCall &call, const char *line)
    { return Expect(call, StatusCode::Missing, line); };
    return {missing(SubMod("S"), lines.notInitialized), missing(Tab("T", "a"), lines.notInitialized),
            missing(Group("G"), lines.notInitialized),  missing(Row("\"A\""), lines.rowNotInitialized),
            missing(Copy(), lines.notInitialized),      missing(UnInit(), lines.notInitialized)};
}

/// Every argument that may be refused; the document must not change.
std::vector<WriterCall> EmptyArguments(const FailureLines &lines)
{
    const auto empty = [](const WriterCall &call, const char *line)
    { return Expect(call, StatusCode::NotFound, line); };
    return {empty(Init(""), lines.noModuleName), empty(SubMod(""), lines.noSubModName),
            empty(Tab("", "a"), lines.noTabOrHeader), empty(Tab("T", ""), lines.noTabOrHeader),
            empty(Row(""), lines.noRow)};
}

TEST(ModuleDataWriter, Failures)
{
    for (const FailureLines &lines : kFailureLines)
    {
        SCOPED_TRACE(kWriterComponents[static_cast<std::size_t>(lines.kind)]);
        std::vector<WriterCall> calls = Uninitialized(lines);
        RunWriter(lines.kind, calls);
        calls.insert(calls.begin(), {Init("M"), UnInit()});
        RunWriter(lines.kind, calls);

        const std::vector<WriterCall> report = {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\"")};
        std::vector<WriterCall> refused = report;
        for (const WriterCall &call : EmptyArguments(lines))
        {
            if (call.status != StatusCode::Success)
                refused.push_back(call);
            else
                RunWriter(lines.kind, {call});
        }
        EXPECT_EQ(RunWriter(lines.kind, refused), RunWriter(lines.kind, report));
        RunWriter(lines.kind, {Init("M"), Tab("T", "a"), Expect(Group(""), StatusCode::NotFound, lines.noGroupName)});
    }
}

TEST(ModuleDataWriter, OneClassPerPairOfKinds)
{
    for (unsigned kind = 0; kind < 8; kind += 2)
    {
        const ModuleDataWriterOwner first(CreateModuleDataWriter(static_cast<OutputKind>(kind)));
        const ModuleDataWriterOwner second(CreateModuleDataWriter(static_cast<OutputKind>(kind + 1)));
        EXPECT_EQ(std::type_index(typeid(*first)), std::type_index(typeid(*second))) << kind;
    }
    for (const unsigned kind : {10U, 255U})
        EXPECT_EQ(CreateModuleDataWriter(static_cast<OutputKind>(kind)), nullptr);
    DestroyModuleDataWriter(nullptr);
}

TEST(ModuleDataWriter, EveryOperationTracesItsWayInAndOut)
{
    for (const OutputKind kind : {OutputKind::UiXml, OutputKind::LogXml, OutputKind::LogHtml, OutputKind::LogHtmlXml,
                                  OutputKind::LogJson, OutputKind::UiJson})
    {
        const std::string name = kWriterComponents[static_cast<std::size_t>(kind)];
        const bool isJson = kind >= OutputKind::LogJson;
        DebugHandle_t *handle = nullptr;
        InitDebugHandle(name.c_str(), &handle);
        handle->traceType = TRACE_ALL;
        handle->traceFormat = FORMAT_FUNCTION;
        testing::internal::CaptureStdout();
        RunWriter(kind, {Init("M"), SubMod("S"), Tab("T", "a"), Group("G"), Row("\"A\"")});
        const std::string lines = testing::internal::GetCapturedStdout();
        UnInitDebugHandle(handle);
        for (const std::string &operation :
             std::vector<std::string>{name, "~" + name, "Initialize", "AddSubMod", "AddTab", "AddGroup", "AddRow",
                                      "CopyDataToBuffer", "UnInitialize"})
        {
            const std::size_t traced = ModuleDataWriter::SplitString(lines, name + "::" + operation + " ").size() - 1;
            EXPECT_EQ(traced, isJson && operation == "AddGroup" ? 1U : 2U) << name << "::" << operation << lines;
        }
    }
}

TEST(ModuleDataWriter, Texts)
{
    using Texts = std::vector<std::string>;
    using Writer = ModuleDataWriter;
    EXPECT_EQ(Writer::SanitizeText("a\tb\n\r\x7F\xC3\xA9\xE9 \xF0\x9F\x99\x82"),
              "a.b..\x7F\xC3\xA9\xEF\xBF\xBD \xED\xA0\xBD\xED\xB9\x82");
    EXPECT_EQ(Writer::SplitString("\"A\", \"B\", \"\"", "\", \""), (Texts{"\"A", "B", "\""}));
    EXPECT_EQ(Writer::SplitString("", ","), Texts{""});
    EXPECT_EQ(Writer::SplitByChar("a,,b,", ','), (Texts{"a", "", "b"}));
    EXPECT_EQ(Writer::SplitByChar("", ','), Texts{});
    EXPECT_EQ(Writer::ReplaceAll("A B  C", " ", "_ "), "A_ B_ _ C");
}

} // namespace
