#include "Glob.h"
#include "OptionDiff.h"
#include "OptionTable.h"
#include "OptionValue.h"
#include "PageTree.h"
#include "Plan.h"
#include "Redaction.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <utility>

namespace
{

using namespace TestSupport;

/// A choice, a number of one byte, a text of eight bytes, an option that a condition grays out, and one that waits.
constexpr const char *kKnobs = R"XML(
<knob setupType="oneof" name="Mode" prompt="Start mode" SetupPgPtr="Boot/Mode" size="1" default="0x0" CurrentVal="0x01"><options><option text="auto" value="0x2"/><option text="UEFI" value="0x0"/><option text="Legacy" value="0x1"/><option text="AUTO" value="0x3"/><option text="2" value="0x5"/></options></knob>
<knob setupType="numeric" name="Delay" prompt="NA" SetupPgPtr="Boot" size="0x1" default="0xA" CurrentVal="0x0A"/>
<knob setupType="text" name="Label" prompt="Rack" SetupPgPtr="Main" size="8" default="" CurrentVal="bench"/>
<knob setupType="checkbox" name="Deep" prompt="Deep" depex="GrayIf(Mode == 0x1)" size="1" default="0x0" CurrentVal="0x0"><options><option text="No" value="0x0"/><option text="Yes" value="0x1"/></options></knob>
<knob setupType="numeric" name="Waits" prompt="Waits" size="8" default="0x1" CurrentVal="0x1" PendingVal="0x2"/>
<knob setupType="text" name="TpmDevice" default="" CurrentVal=""/><knob name="Bare"/><knob name="Delay" CurrentVal="0x1"/>)XML";

OptionTable Table(const std::string &knobs = kKnobs, const std::string &attributes = " pending=\"0\"")
{
    const TemporaryDirectory directory;
    WriteFile(directory.Path("dump.xml"), "<SYSTEM><biosknobs" + attributes + ">" + knobs + "</biosknobs></SYSTEM>");
    KnobList list;
    FurtherDetails further;
    std::int32_t damagedLine = 0;
    EXPECT_EQ(readDump(directory.Path("dump.xml"), list, further, damagedLine), DumpOutcome::Read);
    return OptionTable(std::move(list), further);
}

TEST(Options, ReadDumpTellsWhatAFileIs)
{
    const TemporaryDirectory directory;
    const std::string path = directory.Path("dump.xml");
    KnobList knobs;
    FurtherDetails further;
    std::int32_t line = 1;
    EXPECT_EQ(readDump(path, knobs, further, line), DumpOutcome::Unreadable);
    const std::pair<const char *, DumpOutcome> cases[] = {
        {"", DumpOutcome::NoDump},
        {"{}", DumpOutcome::NoDump},
        {"<OTHER/>", DumpOutcome::NoDump},
        {"<SYSTEM><biosknobs/></SYSTEM>", DumpOutcome::NoKnobs},
        {"<SYSTEM><biosknobs>\n<knob name=\"a\"/>\n<knob name=\"b\"", DumpOutcome::Read}};
    for (const auto &[text, outcome] : cases)
    {
        WriteFile(path, text);
        EXPECT_EQ(readDump(path, knobs, further, line), outcome) << text;
    }
    EXPECT_EQ(line, 3);
    EXPECT_EQ(knobs.Size(), 2U);
}

TEST(Options, AreWhatTheDumpSays)
{
    const OptionTable table = Table();
    ASSERT_EQ(table.Options().size(), 7U);
    const BiosOption &mode = *table.Find("Mode");
    EXPECT_EQ(KindName(mode.kind), "choice");
    EXPECT_EQ(mode.choices.front().text, "UEFI");
    EXPECT_EQ(mode.choices.back().text, "2");
    EXPECT_TRUE(mode.isChanged);
    EXPECT_FALSE(table.Find("Delay")->isChanged); // one number written in two ways
    EXPECT_EQ(table.Find("Delay")->size, 1U);
    EXPECT_EQ(table.Find("Waits")->pendingValue, "0x2");
    EXPECT_EQ(table.Find("Bare")->kind, OptionKind::Unknown);
    EXPECT_FALSE(table.Find("Bare")->isChanged);
    EXPECT_EQ(table.Find("TpmDevice"), nullptr);
    EXPECT_EQ(table.NearestName("dealy"), "Delay");
    EXPECT_EQ(table.NearestName("mode"), "Mode");
    EXPECT_EQ(table.NearestName("Something else"), "");
}

struct ValueCase
{
    const char *option;
    const char *written;
    const char *forTool;
    const char *inDump;
    /// What the problem begins with.
    const char *problem;
};

constexpr ValueCase kValueCases[] = {
    {"Mode", "UEFI", "UEFI", "0x0", ""},
    {"Mode", "legacy", "Legacy", "0x1", ""},
    {"Mode", "AUTO", "AUTO", "0x3", ""},
    {"Mode", "Auto", "", "", "\"Auto\" is no choice; there are: UEFI, Legacy, auto, AUTO, 2"}, // two would fit
    {"Mode", "2", "2", "0x5", ""}, // a choice's text comes before its number
    {"Mode", "0x2", "0x2", "0x2", ""},
    {"Mode", "9", "", "", "\"9\" is no choice"},
    {"Mode", "", "", "", "\"\" is no choice"},
    {"Delay", "12", "12", "0xC", ""},
    {"Delay", "0xfF", "0xfF", "0xFF", ""},
    {"Delay", "256", "", "", "\"256\" is too large; the largest number is 255"},
    {"Delay", "-1", "", "", "\"-1\" is not a number"},
    {"Delay", "12s", "", "", "\"12s\" is not a number"},
    {"Waits", "18446744073709551615", "18446744073709551615", "0xFFFFFFFFFFFFFFFF", ""},
    {"Waits", "18446744073709551616", "", "", "\"18446744073709551616\" is not a number"},
    {"Label", "", "", "", ""},
    {"Label",
     "pr\xC3\xBC"
     "f 1",
     "pr\xC3\xBC"
     "f 1",
     "pr\xC3\xBC"
     "f 1",
     ""},
    {"Label", "nine long", "", "", "the text has 9 bytes; the longest has 8"},
    {"Label", "\xE9t\xE9", "", "", "the text is not printable UTF-8"},
    {"Label", "\xED\xA0\x80", "", "", "the text is not printable UTF-8"},
    {"Label", "a;b", "", "", "\"a;b\" cannot be handed to the tool"},
    {"Bare", "anything", "anything", "anything", ""},
};

TEST(Options, ValuesAreJudgedAsTheToolTakesThem)
{
    const OptionTable table = Table();
    for (const ValueCase &value : kValueCases)
    {
        const JudgedValue judged = JudgeValue(*table.Find(value.option), value.written);
        EXPECT_TRUE(judged.problem.starts_with(value.problem) && judged.problem.empty() == (*value.problem == '\0'))
            << value.option << "=" << value.written << ": " << judged.problem;
        EXPECT_EQ(judged.problem.empty() ? judged.forTool : "", value.forTool) << value.written;
        EXPECT_EQ(judged.problem.empty() ? judged.inDump : "", value.inDump) << value.written;
    }
}

TEST(Options, ValuesAreWrittenSoThatTheyComeBack)
{
    const OptionTable table = Table();
    const BiosOption &mode = *table.Find("Mode"), &label = *table.Find("Label");
    EXPECT_EQ(ValueText(mode, "0x01"), "Legacy");
    EXPECT_EQ(ValueText(mode, "0x9"), "0x9");
    EXPECT_EQ(ValueText(*table.Find("Delay"), "0x0A"), "10");
    EXPECT_EQ(WritableValue(mode, "0x05"), "2");
    EXPECT_EQ(WritableValue(mode, "0x9"), std::nullopt);
    for (const char *const text : {" a", "a\t", "=a", "a;b", "a\nb"})
        EXPECT_EQ(WritableValue(label, text), std::nullopt) << text;
    EXPECT_EQ(WritableValue(label, "a = b"), "a = b");
}

TEST(Options, ConditionsAreUnderstoodWhereTheyAreSimple)
{
    const auto isMet = [](std::string_view condition)
    {
        return IsConditionMet(condition, [](std::string_view name)
                              { return name == "A" ? std::optional<std::uint64_t>(2) : std::nullopt; });
    };
    for (const char *const barred :
         {"GrayIf(A == 0x2)", "HideIf(A < 3)", "GrayIf(A != 0)", "GrayIf(A >= 2)", "GrayIf(A > 1)", "GrayIf(A <= 2)"})
        EXPECT_EQ(isMet(barred), false) << barred;
    for (const char *const met : {"GrayIf(A == 3)", "GrayIf(A < 2)", "GrayIf(A > 2)", "HideIf(A != 2)"})
        EXPECT_EQ(isMet(met), true) << met;
    for (const char *const unknown :
         {"TRUE", "", "GrayIf(B == 1)", "GrayIf(A)", "GrayIf(A == x)", "GrayIf(A == 1 AND A == 2)"})
        EXPECT_EQ(isMet(unknown), std::nullopt) << unknown;
}

/// "line:column code option" for each finding, and "name=value" for each planned change, with "!" where there is
/// something to program.
std::string Describe(const Plan &plan)
{
    std::string text;
    for (const Finding &finding : plan.findings)
        text += std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + " " +
                std::string(finding.code) + " " + finding.option + "|";
    for (const PlannedChange &change : plan.changes)
        text += std::string(change.option->name) + "=" + change.forTool + (change.isToDo ? "!" : "") + "|";
    return text;
}

struct TemplateCase
{
    TemplateKind kind;
    const char *text;
    const char *plan;
};

constexpr TemplateKind kText = TemplateKind::Text, kIni = TemplateKind::KnobFile;
constexpr TemplateCase kTemplateCases[] = {
    {kText, "", "0:0 nothing-to-do |"},
    {kText, "Mode=legacy;Delay=10", "0:0 nothing-to-do |Mode=Legacy|Delay=10|"},
    {kText, "Mode=UEFI\n;Delay= 12 \n", "Mode=UEFI!|Delay=12!|"},
    {kText, "Mode=UEFI;\nDelay=12;\n", "2:1 line-break-in-name Delay|Mode=UEFI!|Delay=12!|"},
    {kText, "Mode=UEFI\n  Delay=12;Label=x", "2:3 text-behind-value Mode|Mode=UEFI!|Label=x!|"},
    {kText, "\xC3\xA4;Nope=1;=2;Mode=no",
     "1:1 no-assignment |1:3 unknown-option Nope|1:10 no-name |1:13 invalid-value Mode|"},
    {kText, "Delay=12;Delay=12;Delay=13", "1:10 assigned-twice Delay|1:19 assigned-twice Delay|Delay=12!|"},
    {kText, "Mode=Legacy;Deep=Yes", "1:13 condition-not-met Deep|Mode=Legacy|Deep=Yes!|"},
    {kText, "Deep=Yes;Mode=UEFI", "Deep=Yes!|Mode=UEFI!|"}, // of the values behind the update
    {kText, "Waits=2", "0:0 nothing-to-do |Waits=2|"},
    {kText, "Waits=1", "Waits=1!|"}, // takes back what waits
    {kIni, "[Boot]\n# all\nMode == UEFI ; why\n\nDelay=12\n==\n", "Mode=UEFI!|Delay=12!|"},
    {kIni, "Delay=12\nDelay=12\nwhat\n==3", "2:1 assigned-twice Delay|3:1 no-assignment |4:1 no-name |Delay=12!|"},
};

TEST(Options, TemplatesArePlannedWithTheirPlaces)
{
    const OptionTable table = Table();
    for (const TemplateCase &each : kTemplateCases)
        EXPECT_EQ(Describe(MakePlan(table, ReadTemplate(each.text, each.kind), each.kind)), each.plan) << each.text;
    EXPECT_EQ(Describe(MakePlan(table, ReadAssignments({"Delay=1=2", "Mode", " Label = x "}), kText)),
              "0:0 no-assignment |0:0 invalid-value Delay|Label=x!|");
    EXPECT_EQ(WriteTemplate({{"A", "1"}, {"B", ""}}, kText), "A=1\n;B=\n");
    EXPECT_EQ(WriteTemplate({{"A", "1"}, {"B", ""}}, kIni), "[BiosKnobs]\nA==1\nB==\n");
}

/// What dumps of real machines have: limits, a read-only option, one that cannot be read, rules of a driver.
constexpr const char *kRealKnobs = R"XML(
<knob setupType="numeric" name="Fan" size="8" kind="integer" signed="TRUE" min="-10" max="20" step="5" default="0x0" CurrentVal="-5"/>
<knob setupType="numeric" name="Wide" size="8" kind="integer" signed="TRUE" CurrentVal="0x1"/>
<knob setupType="text" name="Tag" size="0" kind="string" minLength="2" maxLength="3" CurrentVal="ab"/>
<knob setupType="text" name="Fixed" size="2" kind="string" readOnly="TRUE" default="" CurrentVal="too long"/>
<knob setupType="text" name="Dark" size="0" kind="string" unreadable="permission denied" CurrentVal=""/>
<knob setupType="oneof" name="d/Mode" size="1" kind="enumeration" depex="[ReadOnlyIf:My Key=On][SuppressIfNot:Fan=-5] Off[ForceIf:Tag=xy];Auto" default="0x0" CurrentVal="0x1"><options><option text="Off" value="0x0"/><option text="Auto" value="0x1"/></options></knob>
<knob setupType="oneof" name="d/My Key" size="1" kind="enumeration" CurrentVal="0x0"><options><option text="Off" value="0x0"/><option text="On" value="0x1"/></options></knob>)XML";

constexpr TemplateCase kRealCases[] = {
    {kIni, "Fan=-10\nTag=\xC3\xA9\xC3\xA9\nd/Mode=Auto", "Fan=-10!|Tag=\xC3\xA9\xC3\xA9!|d/Mode=Auto|"},
    {kIni, "Fan=-15\nTag=a", "1:1 invalid-value Fan|2:1 invalid-value Tag|"},
    {kIni, "Fan=25\nTag=abcd", "1:1 invalid-value Fan|2:1 invalid-value Tag|"},
    {kIni, "Fan=4\nWide=-0x10", "1:1 invalid-value Fan|Wide=-0x10!|"},
    {kIni, "Wide=-9223372036854775808", "Wide=-9223372036854775808!|"},
    {kIni, "Wide=9223372036854775808", "1:1 invalid-value Wide|"},
    {kIni, "Fixed=too long\nTag=xyz", "Fixed=too long|Tag=xyz!|"},
    {kIni, "Fixed=x", "1:1 read-only Fixed|"},
    {kIni, "Dark=\nWide=1", "Dark=!|Wide=1|"}, // nobody knows whether it is empty
    {kIni, "d/Mode=Off", "d/Mode=Off!|"},
    {kIni, "d/Mode=Off\nd/My Key=1", "1:1 condition-not-met d/Mode|d/Mode=Off!|d/My Key=1!|"},
    {kIni, "d/Mode=Off\nFan=5", "1:1 condition-not-met d/Mode|d/Mode=Off!|Fan=5!|"},
};

TEST(Options, RealMachinesSayWhatTheyTake)
{
    const OptionTable table = Table(kRealKnobs, " valuesNeedRights=\"TRUE\"");
    EXPECT_TRUE(table.ValuesNeedRights());
    for (const TemplateCase &each : kRealCases)
        EXPECT_EQ(Describe(MakePlan(table, ReadTemplate(each.text, each.kind), each.kind)), each.plan) << each.text;
    const BiosOption &mode = *table.Find("d/Mode");
    const auto xy = [](std::string_view name)
    { return name == "Tag" ? std::optional<std::string>("xy") : std::nullopt; };
    EXPECT_EQ(BarringRule(mode, "0x1", xy), "the option has to be \"Off\" while Tag is \"xy\"");
    EXPECT_EQ(BarringRule(mode, "0x0", xy), "");

    EXPECT_EQ(CurrentText(*table.Find("Dark")), "(unreadable)");
    EXPECT_EQ(DiffToDefaults(table).size(), 3U); // not where the default or the value is unknown
    EXPECT_TRUE(Diff(Table(R"(<knob name="Dark" setupType="text" CurrentVal="x"/>)"), table).size() == 6U);
    const BiosOption *const options[] = {table.Find("Fan"), table.Find("Tag"), table.Find("Fixed")};
    const Plan plan = PlanDefaults(options);
    EXPECT_EQ(Describe(plan), "0:0 no-default Tag|0:0 read-only Fixed|Fan=0!|");
    const Plan dark = MakePlan(table, ReadAssignments({"Dark="}), kText);
    EXPECT_EQ(Verify(dark.changes.at(0), table), Verdict::PendingRestart);
}

TEST(Options, DefaultsArePlannedAndWhatIsReadBackIsJudged)
{
    const OptionTable table = Table();
    const BiosOption *const options[] = {table.Find("Mode"), table.Find("Label"), table.Find("Delay"),
                                         table.Find("Bare")};
    const Plan plan = PlanDefaults(options);
    EXPECT_EQ(Describe(plan), "Mode=UEFI!|Label=!|Delay=|Bare=|");
    const std::pair<const char *, Verdict> readBack[] = {
        {"name=\"Mode\" CurrentVal=\"0x1\" PendingVal=\"0x0\"", Verdict::PendingRestart},
        {"name=\"Mode\" CurrentVal=\"0x0\"", Verdict::InEffect},
        {"name=\"Mode\" CurrentVal=\"0x1\"", Verdict::Rejected},
        {"name=\"Mode\" CurrentVal=\"0x2\"", Verdict::Mismatch},
        {"name=\"Mode\" CurrentVal=\"0x1\" PendingVal=\"0x2\"", Verdict::Mismatch},
        {"name=\"Moda\" CurrentVal=\"0x1\"", Verdict::Mismatch}};
    for (const auto &[knob, verdict] : readBack)
    {
        const OptionTable after = Table("<knob setupType=\"oneof\" " + std::string(knob) + "/>");
        EXPECT_EQ(VerdictName(Verify(plan.changes[0], after)), VerdictName(verdict)) << knob;
    }
    EXPECT_EQ(Verify(plan.changes[2], table), Verdict::Unchanged);
    // A dump that does not tell what waits.
    EXPECT_EQ(Verify(plan.changes[0], Table("<knob setupType=\"oneof\" name=\"Mode\" CurrentVal=\"0x1\"/>", "")),
              Verdict::PendingRestart);
}

TEST(Options, DifferencesAreFoundByName)
{
    const OptionTable before = Table();
    const OptionTable after = Table(R"(<knob setupType="oneof" name="Mode" CurrentVal="0x1"/><knob name="New"/>
        <knob setupType="numeric" name="Delay" CurrentVal="0xB"/><knob name="Bare"/><knob name="Deep" CurrentVal="0x0"/>)");
    std::string found;
    for (const OptionChange &change : Diff(before, after))
        found += std::string(ChangeName(change.kind)) + " " + std::string(change.option.name) + " " +
                 std::string(change.OldValue()) + ">" + std::string(change.NewValue()) + "|";
    EXPECT_EQ(found, "changed Delay 0x0A>0xB|removed Label bench>|removed Waits 0x1>|added New >|");
    const std::vector<OptionChange> changed = DiffToDefaults(before);
    ASSERT_EQ(changed.size(), 2U);
    EXPECT_EQ(changed[1].OldValue(), "");
    EXPECT_EQ(changed[1].NewValue(), "bench");
}

TEST(Options, RedactedValuesAreGone)
{
    OptionTable table = Table();
    EXPECT_TRUE(IsToBeRedacted(*table.Find("Label"), {})); // a text
    EXPECT_FALSE(IsToBeRedacted(*table.Find("Mode"), {}));
    const std::string also[] = {"start M?de"};
    Redact(table, also);
    const BiosOption &mode = *table.Find("Mode");
    EXPECT_EQ(mode.currentValue, "");
    EXPECT_EQ(ValueText(mode, "0x1"), "(redacted)");
    EXPECT_EQ(ValueNumber(mode, "0x1"), std::nullopt);
    EXPECT_EQ(JudgeValue(mode, "hunter2").problem.find("hunter2"), std::string::npos);
    EXPECT_TRUE(mode.isChanged);
    OptionTable secret = Table(R"(<knob setupType="numeric" name="x" prompt="Admin PASSWORD hash" CurrentVal="0x1"/>)");
    Redact(secret, {});
    EXPECT_EQ(secret.Options()[0].currentValue, "");
    EXPECT_FALSE(AreKnownToDiffer(secret.Options()[0], *Table().Find("Delay")));
    // A text in one table, a number in the other.
    OptionTable text = Table(R"(<knob setupType="text" name="x" CurrentVal="a"/><knob name="y" CurrentVal="0x1"/>)");
    OptionTable number = Table(R"(<knob setupType="numeric" name="x" CurrentVal="0x1"/>)");
    OptionTable *const tables[] = {&text, &number};
    RedactTogether(tables, {});
    EXPECT_EQ(number.Options()[0].currentValue, "");
    EXPECT_EQ(text.Find("y")->currentValue, "0x1");
}

TEST(Options, PagesStandBelowTheOneAboveThem)
{
    const OptionTable table = Table(R"(<knob name="1" SetupPgPtr="B/x"/><knob name="2" SetupPgPtr="A"/><knob name="3"/>
        <knob name="4" SetupPgPtr="B" default="0x0" CurrentVal="0x1"/><knob name="5" SetupPgPtr="B/x/y"/>
        <knob name="6" SetupPgPtr="/Z"/>)");
    const PageTree tree(table);
    std::string found;
    for (const std::string_view path : tree.Paths())
        found += std::string(path) + ":" + std::to_string(tree.CountOf(path).options) + "/" +
                 std::to_string(tree.CountOf(path).changed) + " ";
    EXPECT_EQ(found, "B:3/1 B/x:2/0 B/x/y:1/0 A:1/0 :2/0 /Z:1/0 ");
}

TEST(Options, PatternsMatch)
{
    const std::pair<const char *, const char *> matching[] = {
        {"*", ""},   {"boot*", "BootFast"}, {"*fast", "BootFast"}, {"B??tF*t", "BootFast"}, {"*a*b*c", "xaxbxbxc"},
        {"a**", "A"}};
    for (const auto &[pattern, text] : matching)
        EXPECT_TRUE(MatchesGlob(pattern, text)) << pattern;
    const std::pair<const char *, const char *> other[] = {
        {"", "a"}, {"?", ""}, {"boot", "BootFast"}, {"*a*b*c", "xaxbxb"}};
    for (const auto &[pattern, text] : other)
        EXPECT_FALSE(MatchesGlob(pattern, text)) << pattern;
    // What would take forever if every "*" were tried with every other.
    EXPECT_FALSE(MatchesGlob("*a*a*a*a*a*a*a*a*a*a*a*a*b", std::string(20'000, 'a')));
    EXPECT_EQ(FindIgnoringCase("Deep SLEEP", "sleep"), 5U);
    EXPECT_EQ(FindIgnoringCase("Deep", "sleep"), std::string::npos);
}

} // namespace
