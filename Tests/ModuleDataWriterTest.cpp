#include "ModuleSupport.h"
#include "WriterScript.h"

namespace
{

using Pieces = std::vector<std::string>;

TEST(ModuleDataWriter, SanitizesTexts)
{
    const struct
    {
        std::string text;
        std::string expected;
    } cases[] = {
        {"", ""},
        {"plain <&> \x7F", "plain <&> \x7F"},
        {"\t\n\r\x1F", "...."},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"},
        {"x\xE9y", "x\xEF\xBF\xBDy"},
        {"a\xF0\x9F\x98\x80z", "a\xED\xA0\xBD\xED\xB8\x80z"},
        {"\xC3\x01\xC3", "\xEF\xBF\xBD.\xEF\xBF\xBD"},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(ModuleDataWriter::SanitizeText(text), expected) << text;
}

TEST(ModuleDataWriter, SplitsAndReplaces)
{
    EXPECT_EQ(ModuleDataWriter::SplitString("\"A\", \"B\", \"C\"", "\", \""), (Pieces{"\"A", "B", "C\""}));
    EXPECT_EQ(ModuleDataWriter::SplitString("", ","), Pieces{""});
    EXPECT_EQ(ModuleDataWriter::SplitString("aaa", "aa"), (Pieces{"", "a"}));
    EXPECT_EQ(ModuleDataWriter::SplitString("a,", ","), (Pieces{"a", ""}));
    EXPECT_EQ(ModuleDataWriter::SplitByChar("", ','), Pieces{});
    EXPECT_EQ(ModuleDataWriter::SplitByChar("a,,b,", ','), (Pieces{"a", "", "b"}));
    EXPECT_EQ(ModuleDataWriter::SplitByChar(",", ','), Pieces{""});
    EXPECT_EQ(ModuleDataWriter::ReplaceAll("A B  C", " ", "_"), "A_B__C");
    EXPECT_EQ(ModuleDataWriter::ReplaceAll("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(ModuleDataWriter::ToDecimalString(4294967295U), "4294967295");
}

TEST(ModuleDataWriter, FactoryKnowsEveryKind)
{
    for (std::size_t kind = 0; kind <= 255; ++kind)
    {
        const bool known = kind < std::size(kWriterClasses);
        const TestSupport::TraceLog log(known ? kWriterClasses[kind] : "");
        const bool made = ModuleDataWriterOwner(CreateModuleDataWriter(static_cast<OutputKind>(kind))) != nullptr;
        EXPECT_EQ(made, known) << kind;
        const std::string name = known ? kWriterClasses[kind] : "";
        const std::string function = " Fn:" + name + "::";
        const std::vector<std::string> lines = {" --> " + function + name + " \n", " <-- " + function + name + " \n",
                                                " --> " + function + "~" + name + " \n",
                                                " <-- " + function + "~" + name + " \n"};
        EXPECT_EQ(TestSupport::TraceLog::Take(), known ? lines : std::vector<std::string>()) << kind;
    }
    DestroyModuleDataWriter(nullptr);
}

/// The lines of the failures that the writers of one kind know; none where the operation takes the call.
struct FailureLines
{
    OutputKind kind;
    const char *noModuleName;
    const char *noTabOrHeader;
    const char *noGroupName;
    const char *notInitialized;
    const char *rowNotInitialized;
};

constexpr FailureLines kFailureLines[] = {
    {OutputKind::LogXml, "moduleName is empty\n", "NULL argument(s)\n", "", "NULL Pointer:m_pDoc\n",
     "NULL Pointer(s)\n"},
    {OutputKind::LogHtml, "empty argument\n", "NULL Pointer(s)\n", "", "m_pBuff is empty\n", "m_pBuff is empty\n"},
    {OutputKind::LogHtmlXml, "moduleName is empty\n", "NULL argument(s)\n", "NULL argument(s)\n", "", ""},
};

std::vector<WriterCall> CallsWithoutDocument(const FailureLines &lines)
{
    const auto missing = [](const WriterCall &call, const std::string &line)
    { return line.empty() ? call : call.Fails(StatusCode::Missing, line); };
    return {missing(SubMod("S"), lines.notInitialized), missing(Tab("T", "a"), lines.notInitialized),
            missing(Group("G"), lines.notInitialized),  missing(Row("\"A\""), lines.rowNotInitialized),
            missing(Copy(), lines.notInitialized),      missing(UnInit(), lines.notInitialized)};
}

TEST(ModuleDataWriter, RefusesWhatIsMissingWithItsLine)
{
    for (const FailureLines &lines : kFailureLines)
    {
        std::vector<WriterCall> calls = CallsWithoutDocument(lines);
        RunWriter(lines.kind, calls);
        calls.insert(calls.begin(), {Init("M"), UnInit()});
        RunWriter(lines.kind, calls);

        calls = {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\"")};
        const std::string document = RunWriter(lines.kind, calls);
        calls.push_back(Init("").Fails(StatusCode::NotFound, lines.noModuleName));
        calls.push_back(SubMod("").Fails(StatusCode::NotFound, "subModName is empty\n"));
        calls.push_back(Tab("", "a").Fails(StatusCode::NotFound, lines.noTabOrHeader));
        calls.push_back(Tab("T", "").Fails(StatusCode::NotFound, lines.noTabOrHeader));
        calls.push_back(Row("").Fails(StatusCode::NotFound, "rowContent is empty\n"));
        if (*lines.noGroupName)
            calls.push_back(Group("").Fails(StatusCode::NotFound, lines.noGroupName));
        EXPECT_EQ(RunWriter(lines.kind, calls), document);
    }
}

} // namespace
