#include "WriterScript.h"

namespace
{

TEST(ModuleUIJSONWriter, Documents)
{
    const WriterCase cases[] = {
        {"a sub-module, rows of any number of cells",
         {Init("M"), SubMod("S"), Tab("T", "a,b,"), Group("G"), Row("\"A\", \"B\""), Row("\"A\""),
          Row("\"A\", \"B\", \"\""), Row("x"), Row("")},
         R"({"ModuleName":"M","submodules":[{"SubModuleName":"S","tabs":[{"TabHeader":["a","b"],"TabName":"T",)"
         R"("groups":[{"GroupName":"G","items":[["A","B"],["A"],["A","B",""],[""],[""]]}]}]}]})"},
        {"one empty column title, and none",
         {Init("M"), Tab("T", ","), Tab("U", "")},
         R"({"ModuleName":"M","tabs":[{"TabHeader":[""],"TabName":"T","groups":[{"items":null}]},)"
         R"({"TabName":"U","groups":[{"items":null}]}]})"},
        {"rows before any tab or group; no plain group",
         {Init("M"), Row("\"A\""), Group("PCI Dump"), Row("\"A\", \"B\"")},
         R"({"ModuleName":"M","tabs":[{"groups":[{"GroupName":"PCI Dump","items":[["A","B"]]}]}]})"},
        {"a row without a group",
         {Init("M"), Row("\"A\"")},
         R"({"ModuleName":"M","tabs":[{"groups":[{"items":[["A"]]}]}]})"},
        {"plain rows of a module, with columns and without",
         {Init("ACPI"), Row("\"0\""), Tab("T", "a,b"), Row("\"A\", \"B\"")},
         R"({"ModuleName":"ACPI","tabs":[{"TabHeader":["a","b"],"TabName":"T","groups":[)"
         R"({"items":[{"":"0"},{"a":"A\", \"B"}]}]}]})"},
        {"a second copy repeats the last tab with its group twice",
         {Init("M"), Tab("T", "a"), Group("G"), Copy()},
         R"({"ModuleName":"M","tabs":[{"TabHeader":["a"],"TabName":"T","groups":[{"GroupName":"G","items":null}]},)"
         R"({"TabHeader":["a"],"TabName":"T","groups":[{"GroupName":"G","items":null},)"
         R"({"GroupName":"G","items":null}]}]})"},
        {"a tab without a group gets the last one of the tab before",
         {Init("M"), Tab("T", "a"), Group("G"), Row("\"A\""), Tab("U", "b")},
         R"({"ModuleName":"M","tabs":[)"
         R"({"TabHeader":["a"],"TabName":"T","groups":[{"GroupName":"G","items":[["A"]]}]},)"
         R"({"TabHeader":["b"],"TabName":"U","groups":[{"GroupName":"G","items":[["A"]]}]}]})"},
        {"a description holds back what is current",
         {Init("M", "D"), Tab("T", "a"), Group("G"), Tab("U", "b"), Group("H"), Row("\"A\"")},
         R"({"Description":"D","ModuleName":"M","tabs":[)"
         R"({"TabHeader":["a"],"TabName":"T","groups":[{"GroupName":"G","items":null}]}]})"},
        {"sub-modules after a tab: the tab and its group stay current",
         {Init("M"), Tab("T", "a"), Group("G"), SubMod("S"), SubMod("U"), Tab("V", "b"), Group("H")},
         R"({"ModuleName":"M","submodules":[{"SubModuleName":"S","tabs":[)"
         R"({"TabHeader":["a"],"TabName":"T","groups":[{"GroupName":"G","items":null}]}]},)"
         R"({"SubModuleName":"U","tabs":[)"
         R"({"TabHeader":["b"],"TabName":"V","groups":[{"GroupName":"H","items":null}]}]}]})"},
        {"a column title that is not UTF-8 leaves the text as it was", {Init("M"), Tab("T", "\xE9")}, "before"},
    };
    CheckDocuments(OutputKind::UiJson, cases);
}

} // namespace
