#include "CopyingJSONWriter.h"
#include "WriterScript.h"

#include <random>

namespace
{

TEST(ModuleLogJSONWriter, Documents)
{
    const WriterCase cases[] = {
        {"keys in byte order, texts escaped, a later cell of one name wins",
         {Init("M"), SubMod("S"), Tab("T", "b,B,a,b"), Group("G"), Row("\"1\", \"\\\xC3\xA9\t\", \"3\", \"4\"")},
         R"({"ModuleName":"M","submodules":[{"SubModuleName":"S","groups":[{"GroupName":"G","items":[)"
         "{\"B\":\"\\\\\xC3\xA9\\t\",\"a\":\"3\",\"b\":\"4\"}]}]}]}"},
        {"too few and too many cells, rows of one character",
         {Init("M"), Tab("T", "a,b"), Group("G"), Row("\"A\""), Row("\"A\", \"B\", \"C\""), Row("x"), Row("")},
         R"({"ModuleName":"M","groups":[{"GroupName":"G","items":[{"a":"A"},{"a":"A","b":"B"},{"a":""},{"a":""}]}]})"},
        {"rows before any tab or group",
         {Init("M"), Row("\"A\"")},
         R"({"ModuleName":"M","groups":[{"GroupName":null,"items":[{}]}]})"},
        {"groups completed before and after the first row",
         {Init("M"), Tab("T", "a"), Group("G"), Group("H"), Row("\"A\""), Group(""), Group("I")},
         R"({"ModuleName":"M","groups":[{"GroupName":"G","items":null},{"GroupName":"H","items":[{"a":"A"}]},)"
         R"({"GroupName":"","items":[]},{"GroupName":"I","items":[]}]})"},
        {"plain rows of a group",
         {Init("acpi"), Tab("T", "a"), Group("PCI Dump"), Row("\"A\", \"B\""), Group("G"), Row("\"A\"")},
         R"({"ModuleName":"acpi","groups":[{"GroupName":"PCI Dump","items":["A\", \"B"]},)"
         R"({"GroupName":"G","items":[{"a":"A"}]}]})"},
        {"plain rows of a module",
         {Init("ACPI"), Row("\"A\", \"B\""), Row("x")},
         R"({"ModuleName":"ACPI","groups":[{"items":["A\", \"B",""]}]})"},
        {"a second copy repeats the last group",
         {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\""), Copy(), Row("\"B\"")},
         R"({"ModuleName":"M","groups":[{"GroupName":"G","items":[{"a":"A"}]},)"
         R"({"GroupName":"G","items":[{"a":"A"},{"a":"B"}]}]})"},
        {"a description holds back what is current",
         {Init("M", "D"), Tab("T", "a"), Group("G"), Group("H"), Row("\"A\""), Copy()},
         R"({"Description":"D","ModuleName":"M","groups":[{"GroupName":"G","items":null}]})"},
        {"a tab keeps the rows until a group starts",
         {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\""), Tab("U", "b"), Row("\"B\"")},
         R"({"ModuleName":"M","groups":[{"GroupName":"G","items":[{"a":"A"}]},)"
         R"({"GroupName":null,"items":[{"a":"A"},{"b":"B"}]}]})"},
        {"the first sub-module discards what is current",
         {Init("M"), Tab("T", "a"), Group("G"), Group("H"), Row("\"A\""), SubMod("S"), SubMod("U")},
         R"({"ModuleName":"M","groups":[{"GroupName":"G","items":null}],"submodules":[)"
         R"({"SubModuleName":"S","groups":[{"items":[]}]},{"SubModuleName":"U","groups":[{"items":[]}]}]})"},
        {"a name that is not UTF-8 leaves the text as it was", {Init("M"), Group("\xE9")}, "before"},
    };
    CheckDocuments(OutputKind::LogJson, cases);
}

WriterCall RandomCall(std::mt19937 &random)
{
    const auto pick = [&random](std::initializer_list<const char *> texts)
    { return std::string(texts.begin()[random() % texts.size()]); };
    switch (random() % 16)
    {
    case 0:
        return random() % 8 != 0 ? Copy() : Init(pick({"M", "ACPI"}), pick({"", "", "D"}));
    case 1:
        return random() % 8 != 0 ? Copy() : UnInit();
    case 2:
    case 3:
        return SubMod(pick({"S", ""}));
    case 4:
    case 5:
    case 6:
        return Tab(pick({"T", ""}), pick({"a,b", "a,", ""}));
    case 7:
    case 8:
    case 9:
        return Group(pick({"G", "PCI Dump", ""}));
    default:
        return Row(pick({"\"A\"", "\"A\", \"B\", \"C\"", "x"}));
    }
}

/// Whatever the order of the calls, moving parts of the document must not be seen from outside.
TEST(JSONWriters, AgreeWithTheCopyingOne)
{
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (int run = 0; run < 1000; ++run)
    {
        const OutputKind kind = run % 2 == 0 ? OutputKind::LogJson : OutputKind::UiJson;
        const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
        CopyingJSONWriter copying(kind);
        std::string document;
        std::string expected;
        for (int count = 0; count < 30; ++count)
        {
            const WriterCall call = RandomCall(random);
            EXPECT_EQ(call.make(*writer, document), call.make(copying, expected));
            ASSERT_EQ(document, expected) << "seed " << seed << ", run " << run << ", call " << count;
        }
    }
}

} // namespace
